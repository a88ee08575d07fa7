// The process on Windows.
#pragma once

#include "platform/Process.h"
#include "platform/win32/UniqueHandle.h"

namespace zq {

class Win32Process final : public Process {
 public:
  // `pump` takes the waiting window messages through their handlers. Instances of one program know each other
  // by `instanceName`.
  explicit Win32Process(void (*pump)(), const wchar_t* instanceName = L"Local\\Zeroquill.Instance");

  bool EarlierInstanceRuns() override { return earlierInstance_; }
  std::string ApplicationPath() override;
  std::string CommandLine() override;
  void PumpMessages() override { pump_(); }
  void LookAtMessages() override;
  bool StartProgram(const std::string& path) override;
  void End() override;

 private:
  void (*pump_)();
  UniqueKernelHandle instanceMutex_;
  bool earlierInstance_ = false;
  ULONGLONG lastLook_ = 0;  // in milliseconds of the system's run; 0 for none yet
};

}  // namespace zq
