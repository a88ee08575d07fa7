// Tells another program how many things of each kind this one has: the soak, and whoever looks for a leak.
#pragma once

namespace zq::debug {

// Not to be found in a release.
inline constexpr wchar_t kCountersClass[] = L"ZeroquillLiveCounters";

// Makes a window that is never seen, a child of HWND_MESSAGE, whose text is the counts as they are when it is
// asked for: InLines of LiveCounts and of the blocks and bytes in all heaps of the process. On the thread
// that handles the program's messages, so that the answer is from between two of them. In builds with
// ZQ_COUNTERS alone.
void AnswerWithCounters();

}  // namespace zq::debug
