#include "exchange/RouteLineFeed.h"

namespace hifx {

RouteLineFeed::RouteLineFeed(std::unique_ptr<LineReader> source, const clsExchMap& map, const clsPrompts& prompts)
    : source_(std::move(source)), parser_(map, prompts), planned_(parser_.Line()) {
  reader_ = std::thread([this] { Read(); });
}

RouteLineFeed::~RouteLineFeed() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_all();
  reader_.join();
}

void RouteLineFeed::Read() {
  std::string text;
  for (uint64_t n = 0;; ++n) {
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [&] { return stopping_ || n - taken_ < batches_.size(); });
      if (stopping_) return;
    }
    // The conversion is done with this batch: it is the reader's alone
    // until it is handed over.
    Batch& batch = batches_[n % batches_.size()];
    Fill(batch, text);
    {
      const std::lock_guard lock(mutex_);
      filled_ = n + 1;
    }
    changed_.notify_all();
    if (batch.last) return;
  }
}

void RouteLineFeed::Fill(Batch& batch, std::string& text) {
  batch.count = 0;
  batch.last = false;
  batch.failure = nullptr;
  try {
    while (batch.count < kBatchLines) {
      if (!source_->ReadLine(text)) {
        batch.last = true;
        return;
      }
      parser_.Parse(text);
      if (batch.lines.size() == batch.count) batch.lines.push_back(Line{planned_, {}, 0});
      Line& line = batch.lines[batch.count];
      parser_.TakeLine(line.values);
      line.readType = parser_.ReadType();
      line.position = source_->Position();
      ++batch.count;
    }
  } catch (...) {
    batch.failure = std::current_exception();
    batch.last = true;
  }
}

const RouteLineFeed::Line* RouteLineFeed::Next() {
  while (current_ == nullptr || next_ == current_->count) {
    if (current_ != nullptr) {
      if (current_->failure) std::rethrow_exception(current_->failure);
      if (current_->last) return nullptr;
      {
        const std::lock_guard lock(mutex_);
        ++taken_;
      }
      changed_.notify_all();
    }
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [&] { return filled_ > taken_; });
    }
    // taken_ changes only here, on this thread.
    current_ = &batches_[taken_ % batches_.size()];
    next_ = 0;
  }
  return &current_->lines[next_++];
}

}  // namespace hifx
