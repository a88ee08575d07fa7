#include "engine/WindowsOpening.h"

#include <algorithm>
#include <chrono>

#include "engine/WindowsContent.h"

namespace zq::engine::win32 {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kFirstWait{10};
constexpr milliseconds kLongestWait{50};
constexpr milliseconds kNoPatience{0};
constexpr milliseconds kPatienceAtOpening{300};
constexpr milliseconds kPatienceAtRemoval{1'000};

constexpr Opening kToLook = {kReadAttributes | kSynchronize, kShareRead | kShareWrite | kShareDelete,
                             kOpenExisting, kOpenReparsePoint | kOpenNoRecall};

// A scanner or an indexer may be the cause, and be done in a moment.
bool MayPass(Code code) {
  return code == kSharingViolation || code == kDeletePending || code == kAccessDenied;
}

// Tries until it succeeds or fails for good, or `patience` is over, of which the rest is left.
template <typename Call>
Code TryPatiently(WindowsCalls& calls, milliseconds& patience, const Call& call) {
  milliseconds wait = kFirstWait;
  for (;;) {
    const Code code = call();
    if (!MayPass(code) || patience <= milliseconds{0}) return code;
    const milliseconds now = std::min(wait, patience);
    calls.Wait(now);
    patience -= now;
    wait = std::min(wait * 2, kLongestWait);
  }
}

// Waits for one call, and in all not longer than the volume has left: in a folder full of files that nobody
// may open, not each is waited for.
template <typename Call>
Code OpenWith(WindowsCalls& calls, Volume& volume, milliseconds most, const Call& call) {
  const milliseconds given = std::min(most, volume.patience);
  milliseconds left = given;
  const Code code = TryPatiently(calls, left, call);
  if (code != kSuccess) volume.patience -= given - left;
  return code;
}

Opening ToOverwrite(bool direct, bool throughReparsePoint) {
  // Others may read meanwhile. They may not write: that would bring content back.
  return {kGenericRead | kGenericWrite | kDelete, kShareRead | kShareDelete, kOpenExisting,
          kWriteThrough | kOverlapped | (throughReparsePoint ? 0 : kOpenReparsePoint) |
              (direct ? kNoBuffering : 0)};
}

// `open` takes an Opening. Where the file system can't do without its cache, neither do we.
template <typename Open>
Code OpenDirectIfPossible(WindowsCalls& calls, Volume& volume, Access access, bool throughReparsePoint,
                          milliseconds patience, bool& direct, const Open& open) {
  direct = access == Access::Direct;
  const auto attempt = [&] {
    return OpenWith(calls, volume, patience, [&] { return open(ToOverwrite(direct, throughReparsePoint)); });
  };
  const Code code = attempt();
  if (code != kInvalidParameter || !direct) return code;
  direct = false;
  return attempt();
}

bool IsStream(const std::wstring& path) {
  return path.find(L':', path.rfind(L'\\')) != std::wstring::npos;
}

Status Judge(WindowsCalls& calls, Volume& volume, SystemHandle handle, const Wanted& wanted,
             std::uint32_t& attributes, OpenedFile& opened) {
  if (Status status = CheckPlace(calls, handle, volume, wanted.folderFinalPath); !status.Ok()) return status;
  std::uint32_t tag = 0;
  if (const Code code = calls.Look(handle, attributes, tag); code != kSuccess) return calls.StatusOf(code);
  constexpr std::uint32_t kNameSurrogate = 0x20000000;  // IsReparseTagNameSurrogate
  if ((attributes & kAttributeReparsePoint) != 0 && (tag & kNameSurrogate) != 0) {
    return Status::Refusal("it is a link");
  }
  // The stream of a folder has the folder's attributes.
  if ((attributes & kAttributeFolder) != 0 && !IsStream(wanted.path))
    return Status::Refusal("it is a folder");
  std::string reason = WhyNotOn(volume);
  if (reason.empty()) reason = WhyNotWith(attributes, tag, volume.isTrusted);
  if (reason.empty()) reason = WhyNotBehind(calls, handle, volume);
  if (!reason.empty()) return Status::Refusal("it can't be overwritten in place, since " + reason);
  opened.caveat = CaveatOf(attributes, tag);
  return {};
}

}  // namespace

std::wstring ParentPath(const std::wstring& path) {
  const std::size_t slash = path.rfind(L'\\');
  return slash == std::wstring::npos ? std::wstring() : path.substr(0, slash);
}

Status LearnFinalPath(WindowsCalls& calls, SystemHandle folder, Volume& volume, std::wstring& finalPath) {
  Code code = kSuccess;
  for (const std::uint32_t form : kPathForms) {
    code = calls.FinalPath(folder, form, finalPath);
    if (code != kSuccess) continue;
    volume.pathForm = form;
    // A root's ends in one.
    if (finalPath.ends_with(L'\\')) finalPath.pop_back();
    return {};
  }
  finalPath.clear();
  if (volume.isTrusted) return {};
  return Status::Refusal("the system doesn't tell where it lies (" + std::to_string(code) + ')');
}

Status CheckPlace(WindowsCalls& calls, SystemHandle handle, const Volume& volume,
                  const std::wstring& folderFinalPath) {
  std::wstring finalPath;
  return CheckPlace(calls, handle, volume, folderFinalPath, finalPath);
}

Status CheckPlace(WindowsCalls& calls, SystemHandle handle, const Volume& volume,
                  const std::wstring& folderFinalPath, std::wstring& finalPath) {
  finalPath.clear();
  if (folderFinalPath.empty()) return {};
  if (const Code code = calls.FinalPath(handle, volume.pathForm, finalPath); code != kSuccess) {
    return Status::Refusal("the system doesn't tell where it lies (" + std::to_string(code) + ')');
  }
  if (ParentPath(finalPath) != folderFinalPath) {
    return Status::Refusal("the folder on the way to it has become a link to another place");
  }
  return {};
}

// The owner has said that it shall go, and the attribute is all that says otherwise.
Status SetReadOnly(WindowsCalls& calls, SystemHandle handle, std::uint32_t attributes, bool readOnly) {
  Closing toSet(calls);
  constexpr Opening kToSet = {kReadAttributes | kWriteAttributes | kSynchronize,
                              kShareRead | kShareWrite | kShareDelete, kOpenExisting, kOpenReparsePoint};
  if (calls.Reopen(handle, kToSet, toSet.handle) != kSuccess) return Status::Refusal("it is read-only");
  const std::uint32_t wanted = readOnly ? attributes | kAttributeReadOnly : attributes & ~kAttributeReadOnly;
  // None at all would mean that nothing is to change.
  const Code code = calls.SetAttributes(toSet.handle, wanted != 0 ? wanted : kAttributeNormal);
  return code == kSuccess ? Status{} : Status::Refusal("it is read-only");
}

Status OpenToOverwrite(WindowsCalls& calls, Volume& volume, const Wanted& wanted, OpenedFile& opened) {
  opened = {};
  std::uint32_t attributes = 0;
  Closing handle(calls);
  const auto byPath = [&](const Opening& how) { return calls.Open(wanted.path, how, handle.handle); };

  // First to look alone, where opening for writing might already move the content, and where it isn't
  // allowed: the system has one answer for what is read-only, a folder, or looked at by a scanner.
  bool looks = volume.mayBackExternally;
  if (!looks) {
    const Code code =
        OpenDirectIfPossible(calls, volume, wanted.access, false, kNoPatience, opened.direct, byPath);
    looks = MayPass(code);
    if (!looks && code != kSuccess) return calls.StatusOf(code);
  }
  if (looks) {
    if (const Code code = OpenPatiently(calls, volume, wanted.path, kToLook, handle.handle);
        code != kSuccess) {
      return calls.StatusOf(code);
    }
  }
  if (Status status = Judge(calls, volume, handle.handle, wanted, attributes, opened); !status.Ok()) {
    return status;
  }
  if ((attributes & kAttributeReadOnly) != 0) {
    if (Status status = SetReadOnly(calls, handle.handle, attributes, false); !status.Ok()) return status;
    opened.wasReadOnly = true;
  }
  if (looks) {
    // By handle: the file that was looked at, whatever has come under its name. What a cloud's filter keeps
    // has to be written through it.
    SystemHandle again = nullptr;
    const bool throughFilter = (attributes & kAttributeReparsePoint) != 0;
    const Code code =
        OpenDirectIfPossible(calls, volume, wanted.access, throughFilter, kPatienceAtOpening, opened.direct,
                             [&](const Opening& how) { return calls.Reopen(handle.handle, how, again); });
    if (code != kSuccess) {
      if (opened.wasReadOnly) (void)SetReadOnly(calls, handle.handle, attributes, true);
      return calls.StatusOf(code);
    }
    calls.Close(handle.handle);
    handle.handle = again;
  }
  opened.handle = handle.Take();
  return {};
}

Status CreateNew(WindowsCalls& calls, Volume& volume, const Wanted& wanted, OpenedFile& opened,
                 NewFile kind) {
  opened = {};
  Closing handle(calls);
  const Code code = OpenDirectIfPossible(calls, volume, wanted.access, false, kPatienceAtOpening,
                                         opened.direct, [&](Opening how) {
                                           how.disposition = kCreateNew;
                                           if (kind == NewFile::Filler) {
                                             how.share = 0;
                                             how.flags |= kDeleteOnClose;
                                           }
                                           return calls.Open(wanted.path, how, handle.handle);
                                         });
  if (code != kSuccess) return calls.StatusOf(code);
  if (Status status = CheckPlace(calls, handle.handle, volume, wanted.folderFinalPath); !status.Ok()) {
    (void)calls.Remove(handle.handle, false);  // it isn't where it was wanted
    return status;
  }
  opened.handle = handle.Take();
  return {};
}

Code OpenPatiently(WindowsCalls& calls, Volume& volume, const std::wstring& path, const Opening& how,
                   SystemHandle& handle) {
  return OpenWith(calls, volume, kPatienceAtOpening, [&] { return calls.Open(path, how, handle); });
}

Status RemoveEntry(WindowsCalls& calls, SystemHandle& handle, const std::wstring& path, bool readOnlyAgain) {
  milliseconds patience = kPatienceAtRemoval;
  // Taken out of the folder at once even while a scanner still looks at the file; FAT and exFAT can't do it.
  Code code = TryPatiently(calls, patience, [&] {
    const Code atOnce = calls.Remove(handle, true);
    return atOnce == kSuccess ? atOnce : calls.Remove(handle, false);
  });
  if (code != kSuccess) return calls.StatusOf(code);
  // Not before: a read-only file isn't removed.
  std::uint32_t attributes = 0;
  std::uint32_t tag = 0;
  if (readOnlyAgain && calls.Look(handle, attributes, tag) == kSuccess) {
    (void)calls.SetAttributes(handle, attributes | kAttributeReadOnly);
  }
  calls.Close(handle);
  handle = nullptr;
  milliseconds wait = kFirstWait;
  for (;;) {
    code = calls.Exists(path);
    if (code == kFileNotFound || code == kPathNotFound) return {};
    if (code != kSuccess && !MayPass(code)) return calls.StatusOf(code);
    if (patience <= milliseconds{0}) break;
    calls.Wait(std::min(wait, patience));
    patience -= std::min(wait, patience);
    wait = std::min(wait * 2, kLongestWait);
  }
  return Status::Refusal("it stays for as long as another program has it open");
}

}  // namespace zq::engine::win32
