#include "platform/win32/RunTimeErrorReport.h"

#include <windows.h>

#include <new>
#include <string>

#include "platform/RunTimeError.h"
#include "platform/win32/Wide.h"

namespace zq {
namespace {

std::string TextOf(const std::exception_ptr& exception) {
  try {
    std::rethrow_exception(exception);
  } catch (const RunTimeError& error) {
    return ReportText(error);
  } catch (const std::bad_alloc&) {
    return ReportText(RunTimeError(ErrorNumber::OutOfMemory));
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "Unknown error";
  }
}

}  // namespace

void ReportAndEnd(const std::exception_ptr& exception) {
  const std::wstring text = ToWide(TextOf(exception));
  // Task-modal, so that no window of ours takes a command while the report is up.
  ::MessageBoxW(nullptr, text.c_str(), L"Zeroquill", MB_ICONERROR | MB_OK | MB_TASKMODAL | MB_SETFOREGROUND);
  ::ExitProcess(kRunTimeErrorExitCode);
}

}  // namespace zq
