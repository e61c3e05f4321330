// Runs the hifx command line, and the project's other programs, as a script
// would, and captures what they say.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/TempDir.h"

#ifdef _WIN32
#include <windows.h>

#include <map>
#else
#include <sys/wait.h>
#endif

namespace hifx::test {

struct RunResult {
  bool exited = false;  // false when it died of a signal
  int status = -1;
  std::string out;
  std::string err;
};

// A file name as a JSON string holds it, quotes included: a Windows name's
// back slashes doubled.
inline std::string JsonQuoted(const std::string& name) {
  std::string quoted = "\"";
  for (const char c : name) quoted += c == '\\' ? std::string("\\\\") : std::string(1, c);
  return quoted + "\"";
}

// What a command said on standard error, without the summary line that a
// command writing files ends with.
inline std::string WithoutSummary(const std::string& err) {
  const size_t line = err.rfind("hifx: ", err.size() < 2 ? 0 : err.size() - 2);
  if (line == std::string::npos || (line > 0 && err[line - 1] != '\n')) return err;
  if (err.find(": wrote ", line) == std::string::npos) return err;
  return err.substr(0, line);
}

// Variables set for the program's run only; an empty value reads as unset.
using Env = std::vector<std::pair<std::string, std::string>>;

#ifdef _WIN32

// One argument as the C runtime's command-line parser takes it back.
inline std::string ArgQuote(const std::string& arg) {
  if (!arg.empty() && arg.find_first_of(" \t\"") == std::string::npos) return arg;
  std::string q = "\"";
  size_t slashes = 0;
  for (const char c : arg) {
    if (c == '\\') {
      ++slashes;
    } else if (c == '"') {
      q.append(slashes + 1, '\\');
      slashes = 0;
    } else {
      slashes = 0;
    }
    q += c;
  }
  q.append(slashes, '\\');
  return q + "\"";
}

// This process's environment with `env` over it, as CreateProcess takes it.
inline std::string EnvironmentBlock(const Env& env) {
  std::map<std::string, std::string> vars;
  if (char* block = GetEnvironmentStringsA()) {
    for (const char* at = block; *at != '\0'; at += std::char_traits<char>::length(at) + 1) {
      const std::string entry(at);
      const size_t eq = entry.find('=', 1);
      if (eq != std::string::npos) vars[entry.substr(0, eq)] = entry.substr(eq + 1);
    }
    FreeEnvironmentStringsA(block);
  }
  for (const auto& [name, value] : env) {
    if (value.empty()) vars.erase(name);
    else vars[name] = value;
  }
  std::string out;
  for (const auto& [name, value] : vars) out += name + "=" + value + '\0';
  return out + '\0';
}

inline RunResult RunProgram(const std::string& program, const std::vector<std::string>& args,
                            const TempDir& dir, const Env& env = {}) {
  std::string command = ArgQuote(program);
  for (const auto& a : args) command += " " + ArgQuote(a);
  const auto out = dir / "stdout.txt";
  const auto err = dir / "stderr.txt";
  SECURITY_ATTRIBUTES inherit{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  const auto open = [&](const char* name, DWORD access, DWORD disposition) {
    return CreateFileA(name, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, disposition,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
  };
  HANDLE in = open("NUL", GENERIC_READ, OPEN_EXISTING);
  HANDLE outFile = open(out.string().c_str(), GENERIC_WRITE, CREATE_ALWAYS);
  HANDLE errFile = open(err.string().c_str(), GENERIC_WRITE, CREATE_ALWAYS);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in;
  startup.hStdOutput = outFile;
  startup.hStdError = errFile;
  PROCESS_INFORMATION process{};
  std::string block = EnvironmentBlock(env);
  RunResult result;
  if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, block.data(), nullptr, &startup,
                     &process)) {
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    result.exited = true;
    result.status = static_cast<int>(code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  CloseHandle(in);
  CloseHandle(outFile);
  CloseHandle(errFile);
  result.out = ReadBytes(out);
  result.err = ReadBytes(err);
  return result;
}

#else

inline std::string ShellQuote(const std::string& s) {
  std::string q = "'";
  for (const char c : s) {
    if (c == '\'') q += "'\\''";
    else q += c;
  }
  return q + "'";
}

inline RunResult RunProgram(const std::string& program, const std::vector<std::string>& args,
                            const TempDir& dir, const Env& env = {}) {
  std::string command;
  for (const auto& [name, value] : env) command += name + "=" + ShellQuote(value) + " ";
  command += ShellQuote(program);
  for (const auto& a : args) command += " " + ShellQuote(a);
  const auto out = dir / "stdout.txt";
  const auto err = dir / "stderr.txt";
  command += " </dev/null >" + ShellQuote(out.string()) + " 2>" + ShellQuote(err.string());
  const int raw = std::system(command.c_str());
  RunResult result;
  result.exited = WIFEXITED(raw);
  result.status = result.exited ? WEXITSTATUS(raw) : -1;
  result.out = ReadBytes(out);
  result.err = ReadBytes(err);
  return result;
}

#endif

inline RunResult RunHifx(const std::vector<std::string>& args, const TempDir& dir, const Env& env = {}) {
  return RunProgram(HIFX_BINARY, args, dir, env);
}

}  // namespace hifx::test
