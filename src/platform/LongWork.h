// LongWork: what the system learns of work that takes its time, so that it treats it as such.
#pragma once

#include <string>

namespace zq {

class LongWork {
 public:
  virtual ~LongWork() = default;

  // From here to End the computer doesn't go to sleep by itself, and who ends the session meanwhile reads
  // `reason`, of at most 250 characters.
  virtual void Begin(const std::string& reason) = 0;
  // How far it is, on the task bar's button.
  virtual void ShowUncounted() = 0;           // not known yet
  virtual void ShowPercent(int percent) = 0;  // 0 to 100
  virtual void End() noexcept = 0;

  // Marks the button where the user is at another program.
  virtual void CallUser() = 0;
};

// Tells nobody.
class UntoldWork final : public LongWork {
 public:
  static LongWork& Instance() {
    static UntoldWork work;
    return work;
  }
  void Begin(const std::string&) override {}
  void ShowUncounted() override {}
  void ShowPercent(int) override {}
  void End() noexcept override {}
  void CallUser() override {}
};

// Work from here to the end of the scope, however that is left.
class LongWorkScope {
 public:
  LongWorkScope(LongWork& work, const std::string& reason) : work_(work) { work_.Begin(reason); }
  LongWorkScope(const LongWorkScope&) = delete;
  LongWorkScope& operator=(const LongWorkScope&) = delete;
  ~LongWorkScope() { work_.End(); }

 private:
  LongWork& work_;
};

}  // namespace zq
