// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/platform_recorder.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>
#include <thread>

namespace lx_test {
namespace {

// The table holds plain functions, so what they keep stands here. One recorder at a time. Any
// thread may be in any of its functions.
struct Recording {
  std::thread::id caller;  // kept from the start
  std::mutex mutex;        // of all down to the error's text
  std::vector<std::string> log;
  std::vector<std::string> threadLog;
  std::map<void*, std::string> names;
  int events = 0;
  int locks = 0;
  std::uint32_t error = 0;
  std::string errorText;
  std::atomic<std::int32_t> processors{0};
  std::atomic<std::int32_t> pageBytes{0};
  std::atomic<std::int64_t> counter{-1};
  std::atomic<std::int64_t> frequency{-1};
  std::atomic<int> refuseThread{0};
  std::atomic<int> refuseEvent{0};
  std::atomic<int> refuseAllocation{0};
  std::atomic<bool> refuseSlot{false};
  std::atomic<bool> refuseSlotWrites{false};
  std::atomic<bool> refusePriority{false};
  std::atomic<bool> refuseBoost{false};
  std::atomic<bool> refuseTerminate{false};
  std::atomic<bool> refuseClose{false};
};

Recording* recording = nullptr;

const lx::Platform& Real() { return lx::SystemPlatform(); }

void Note(const std::string& entry) {
  const std::scoped_lock hold(recording->mutex);
  const bool own = std::this_thread::get_id() == recording->caller;
  (own ? recording->log : recording->threadLog).push_back(entry);
}

std::string NameOf(void* thing) {
  const std::scoped_lock hold(recording->mutex);
  const auto found = recording->names.find(thing);
  return found != recording->names.end() ? found->second : "?";
}

void Name(void* thing, const std::string& name) {
  const std::scoped_lock hold(recording->mutex);
  recording->names[thing] = name;
}

void NameEvent(lx::EventHandle event) {
  const std::scoped_lock hold(recording->mutex);
  const int number = recording->events++;
  recording->names[event] = (number % 2 == 0 ? "start " : "done ") + std::to_string(number / 2 + 1);
}

void NameLock(void* lock) {
  const std::scoped_lock hold(recording->mutex);
  recording->names[lock] = recording->locks++ % 2 == 0 ? "table" : "dispatch";
}

bool Refuses(std::atomic<int>* countdown) { return *countdown > 0 && --*countdown == 0; }

std::string ThreadName(lx::ThreadHandle thread) {
  return thread == Real().currentThread() ? "self" : NameOf(thread);
}

void* Allocate(std::size_t size) {
  Note("allocate");
  return Refuses(&recording->refuseAllocation) ? nullptr : Real().allocate(size);
}

void AdviseHugePages(void* block, std::size_t bytes) {
  Note("advise huge pages " + std::to_string(bytes));
  Real().adviseHugePages(block, bytes);
}

std::int32_t ProcessorCount() {
  Note("processors");
  return recording->processors;
}

std::int32_t PageSize() {
  Note("page size");
  return recording->pageBytes;
}

std::int64_t Counter() {
  const std::int64_t fixed = recording->counter;
  return fixed >= 0 ? fixed : Real().counter();
}

std::int64_t CounterFrequency() {
  Note("frequency");
  const std::int64_t fixed = recording->frequency;
  return fixed >= 0 ? fixed : Real().counterFrequency();
}

std::uint32_t LastError() {
  const std::scoped_lock hold(recording->mutex);
  return recording->error;
}

void ErrorText(std::uint32_t error, char* text, std::size_t size) {
  const std::scoped_lock hold(recording->mutex);
  std::snprintf(text, size, "%s", error == recording->error ? recording->errorText.c_str() : "?");
}

lx::ThreadHandle BeginThread(std::uint32_t stackBytes, lx::ThreadStart start, void* argument,
                             std::uint32_t flags, std::uint32_t* id) {
  Note("begin thread stack " + std::to_string(stackBytes) + " flags " + std::to_string(flags));
  if (Refuses(&recording->refuseThread)) {
    return nullptr;
  }
  const lx::ThreadHandle thread = Real().beginThread(stackBytes, start, argument, flags, id);
  Name(thread, std::to_string(*id));
  return thread;
}

void EndThread(std::uint32_t code) {
  Note("end thread " + std::to_string(code));
  Real().endThread(code);
}

bool TerminateThread(lx::ThreadHandle thread, std::uint32_t code) {
  Note("terminate " + ThreadName(thread) + " code " + std::to_string(code));
  return Real().terminateThread(thread, code) && !recording->refuseTerminate;
}

bool CloseThread(lx::ThreadHandle thread) {
  Note("close " + ThreadName(thread));
  return Real().closeThread(thread) && !recording->refuseClose;
}

bool SetThreadPriority(lx::ThreadHandle thread, std::int32_t priority) {
  Note("priority " + ThreadName(thread) + " " + std::to_string(priority));
  return !recording->refusePriority && Real().setThreadPriority(thread, priority);
}

bool SetThreadPriorityBoost(lx::ThreadHandle thread, bool disabled) {
  Note("boost " + ThreadName(thread) + " " + (disabled ? "1" : "0"));
  return !recording->refuseBoost && Real().setThreadPriorityBoost(thread, disabled);
}

std::uint32_t AllocateThreadSlot() {
  Note("allocate slot");
  return recording->refuseSlot ? lx::kNoThreadSlot : Real().allocateThreadSlot();
}

bool SetThreadSlot(std::uint32_t slot, void* value) {
  Note("set slot");
  return !recording->refuseSlotWrites && Real().setThreadSlot(slot, value);
}

lx::EventHandle CreateEvent() {
  Note("create event");
  if (Refuses(&recording->refuseEvent)) {
    return nullptr;
  }
  const lx::EventHandle event = Real().createEvent();
  NameEvent(event);
  return event;
}

void SetEvent(lx::EventHandle event) {
  Note("set " + NameOf(event));
  Real().setEvent(event);
}

void ResetEvent(lx::EventHandle event) {
  Note("reset " + NameOf(event));
  Real().resetEvent(event);
}

bool WaitForEvents(std::uint32_t count, const lx::EventHandle* events) {
  std::string entry = "wait " + std::to_string(count);
  for (std::uint32_t i = 0; i < count; ++i) {
    entry += (i == 0 ? ": " : ", ") + NameOf(events[i]);
  }
  Note(entry);
  return Real().waitForEvents(count, events);
}

void InitializeLock(void* lock) {
  NameLock(lock);
  Note("initialize lock " + NameOf(lock));
  Real().initializeLock(lock);
}

void EnterLock(void* lock) {
  Real().enterLock(lock);
  Note("enter " + NameOf(lock));
}

void LeaveLock(void* lock) {
  Note("leave " + NameOf(lock));
  Real().leaveLock(lock);
}

std::uint32_t FloatControl() {
  Note("read float control");
  return Real().floatControl();
}

void SetFloatControl(std::uint32_t word) {
  Note("write float control");
  Real().setFloatControl(word);
}

void ExtendFloatPrecision() {
  Note("extend float precision");
  Real().extendFloatPrecision();
}

int CountIn(const std::vector<std::string>& log, const std::string& call) {
  return static_cast<int>(std::count_if(
      log.begin(), log.end(), [&](const std::string& entry) { return entry.starts_with(call); }));
}

}  // namespace

PlatformRecorder::PlatformRecorder() : table_(Real()), scope_(&table_) {
  recording = new Recording;
  recording->caller = std::this_thread::get_id();
  recording->processors = Real().processorCount();
  recording->pageBytes = Real().pageSize();
  table_.allocate = Allocate;
  table_.adviseHugePages = AdviseHugePages;
  table_.processorCount = ProcessorCount;
  table_.pageSize = PageSize;
  table_.counter = Counter;
  table_.counterFrequency = CounterFrequency;
  table_.lastError = LastError;
  table_.errorText = ErrorText;
  table_.beginThread = BeginThread;
  table_.endThread = EndThread;
  table_.terminateThread = TerminateThread;
  table_.closeThread = CloseThread;
  table_.setThreadPriority = SetThreadPriority;
  table_.setThreadPriorityBoost = SetThreadPriorityBoost;
  table_.allocateThreadSlot = AllocateThreadSlot;
  table_.setThreadSlot = SetThreadSlot;
  table_.createEvent = CreateEvent;
  table_.setEvent = SetEvent;
  table_.resetEvent = ResetEvent;
  table_.waitForEvents = WaitForEvents;
  table_.initializeLock = InitializeLock;
  table_.enterLock = EnterLock;
  table_.leaveLock = LeaveLock;
  table_.floatControl = FloatControl;
  table_.setFloatControl = SetFloatControl;
  table_.extendFloatPrecision = ExtendFloatPrecision;
}

PlatformRecorder::~PlatformRecorder() {
  ForgetServices();
  delete recording;
  recording = nullptr;
}

std::vector<std::string> PlatformRecorder::Log() const {
  const std::scoped_lock hold(recording->mutex);
  return recording->log;
}

std::vector<std::string> PlatformRecorder::ThreadLog() const {
  const std::scoped_lock hold(recording->mutex);
  return recording->threadLog;
}

void PlatformRecorder::Clear() {
  const std::scoped_lock hold(recording->mutex);
  recording->log.clear();
  recording->threadLog.clear();
}

int PlatformRecorder::Count(const std::string& call) const { return CountIn(Log(), call); }
int PlatformRecorder::ThreadCount(const std::string& call) const {
  return CountIn(ThreadLog(), call);
}

void PlatformRecorder::SetProcessors(std::int32_t count) { recording->processors = count; }
void PlatformRecorder::SetPageSize(std::int32_t bytes) { recording->pageBytes = bytes; }
void PlatformRecorder::SetCounter(std::int64_t value, std::int64_t frequency) {
  recording->counter = value;
  recording->frequency = frequency;
}
void PlatformRecorder::SetError(std::uint32_t error, const std::string& text) {
  const std::scoped_lock hold(recording->mutex);
  recording->error = error;
  recording->errorText = text;
}
void PlatformRecorder::RefuseThread(int n) { recording->refuseThread = n; }
void PlatformRecorder::RefuseEvent(int n) { recording->refuseEvent = n; }
void PlatformRecorder::RefuseSlot() { recording->refuseSlot = true; }
void PlatformRecorder::RefuseSlotWrites() { recording->refuseSlotWrites = true; }
void PlatformRecorder::RefuseAllocation(int n) { recording->refuseAllocation = n; }
void PlatformRecorder::RefusePriority(bool refuse) { recording->refusePriority = refuse; }
void PlatformRecorder::RefusePriorityBoost() { recording->refuseBoost = true; }
void PlatformRecorder::RefuseTerminate() { recording->refuseTerminate = true; }
void PlatformRecorder::RefuseClose() { recording->refuseClose = true; }

}  // namespace lx_test
