// Items made on a second thread, in batches a few ahead of the thread that
// takes them: a reader of a file keeps one core on the reading while the
// other converts. The items come in the order made, and a failure of the
// making is raised where its item would have come, once the items before it
// are taken.
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace hifx {

template <typename Item>
class Prefetch {
 public:
  // make fills an item, holding what an earlier one held, and gives false
  // at the end; it runs on the second thread and may raise. A new item
  // starts as a copy of blank. The thread starts at once, so whatever make
  // uses must be ready.
  Prefetch(std::function<bool(Item&)> make, Item blank) : make_(std::move(make)), blank_(std::move(blank)) {
    maker_ = std::thread([this] { Run(); });
  }
  // Stops the making, wherever it is.
  ~Prefetch() {
    {
      const std::lock_guard lock(mutex_);
      stopping_ = true;
    }
    changed_.notify_all();
    maker_.join();
  }
  Prefetch(const Prefetch&) = delete;
  Prefetch& operator=(const Prefetch&) = delete;

  // The next item, the taker's until the next call, or nullptr at the end.
  Item* Next() {
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
        changed_.wait(lock, [&] { return made_ > taken_; });
      }
      // taken_ changes only on this thread.
      current_ = &batches_[taken_ % batches_.size()];
      next_ = 0;
    }
    return &current_->items[next_++];
  }

 private:
  static constexpr size_t kBatchItems = 256;
  struct Batch {
    std::vector<Item> items;
    size_t count = 0;            // items made
    bool last = false;           // the making ends after this batch
    std::exception_ptr failure;  // why it ended early, raised after the items
  };

  void Run() {
    for (uint64_t n = 0;; ++n) {
      {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return stopping_ || n - taken_ < batches_.size(); });
        if (stopping_) return;
      }
      // The taker is done with this batch: it is the maker's alone until
      // it is handed over.
      Batch& batch = batches_[n % batches_.size()];
      Fill(batch);
      {
        const std::lock_guard lock(mutex_);
        made_ = n + 1;
      }
      changed_.notify_all();
      if (batch.last) return;
    }
  }

  void Fill(Batch& batch) {
    batch.count = 0;
    batch.last = false;
    batch.failure = nullptr;
    try {
      for (; batch.count < kBatchItems; ++batch.count) {
        if (batch.items.size() == batch.count) batch.items.push_back(blank_);
        if (!make_(batch.items[batch.count])) {
          batch.last = true;
          return;
        }
      }
    } catch (...) {
      batch.failure = std::current_exception();
      batch.last = true;
    }
  }

  std::function<bool(Item&)> make_;
  const Item blank_;
  std::array<Batch, 4> batches_;
  std::mutex mutex_;
  std::condition_variable changed_;
  uint64_t made_ = 0;   // batches the maker has handed over
  uint64_t taken_ = 0;  // batches the taker is done with
  bool stopping_ = false;
  // The taker's place: the batch it reads and the item in it.
  Batch* current_ = nullptr;
  size_t next_ = 0;
  std::thread maker_;
};

}  // namespace hifx
