#include "sim/SimAudioSystem.h"

namespace lb {

namespace {
constexpr std::int32_t noSuchDevice = 0x21646576; // '!dev'
}

std::vector<AudioDeviceID> SimAudioSystem::deviceIDs() const {
  std::lock_guard lock(mutex_);
  std::vector<AudioDeviceID> ids;
  for (const auto& [id, device] : devices_) ids.push_back(id);
  return ids;
}

AudioRead<std::string> SimAudioSystem::name(AudioDeviceID id) const {
  std::lock_guard lock(mutex_);
  ++nameReads_;
  if (auto failing = failingNames_.find(id); failing != failingNames_.end()) return {failing->second, std::nullopt};
  auto found = devices_.find(id);
  if (found == devices_.end()) return {noSuchDevice, std::nullopt};
  return {0, found->second.name};
}

AudioRead<std::string> SimAudioSystem::uid(AudioDeviceID id) const {
  std::lock_guard lock(mutex_);
  auto found = devices_.find(id);
  if (found == devices_.end()) return {noSuchDevice, std::nullopt};
  return {0, found->second.uid};
}

AudioRead<std::string> SimAudioSystem::serialNumber(AudioDeviceID id) const {
  std::lock_guard lock(mutex_);
  if (!devices_.contains(id)) return {noSuchDevice, std::nullopt};
  return {0, std::to_string(id)};
}

AudioRead<std::uint32_t> SimAudioSystem::transportType(AudioDeviceID id) const {
  std::lock_guard lock(mutex_);
  auto found = devices_.find(id);
  if (found == devices_.end()) return {noSuchDevice, std::nullopt};
  return {0, found->second.bluetooth ? bluetoothTransport : 0x626c746eu}; // 'bltn', built in
}

AudioRead<bool> SimAudioSystem::hasOutputStreams(AudioDeviceID id) const {
  std::lock_guard lock(mutex_);
  auto found = devices_.find(id);
  if (found == devices_.end()) return {noSuchDevice, std::nullopt};
  return {0, found->second.output};
}

bool SimAudioSystem::serverAnswers() const {
  std::lock_guard lock(mutex_);
  return serverAnswers_;
}

std::optional<AudioDeviceID> SimAudioSystem::defaultDevice(AudioDirection direction) const {
  std::lock_guard lock(mutex_);
  if (unreadable_) return std::nullopt;
  return direction == AudioDirection::output ? defaultOutput_ : defaultInput_;
}

std::int32_t SimAudioSystem::setDefaultDevice(AudioDirection direction, AudioDeviceID id) {
  {
    std::lock_guard lock(mutex_);
    ++setCalls_[direction];
    if (!devices_.contains(id)) return noSuchDevice;
    switch (outcome_) {
    case SetOutcome::refused: return -50;
    case SetOutcome::anotherStaysCurrent: return 0;
    case SetOutcome::nothingReadable: unreadable_ = true; return 0;
    case SetOutcome::takes: (direction == AudioDirection::output ? defaultOutput_ : defaultInput_) = id; break;
    }
  }
  changed();
  return 0;
}

AudioDeviceID SimAudioSystem::addDevice(Device device) {
  AudioDeviceID id;
  {
    std::lock_guard lock(mutex_);
    id = nextID_++;
    devices_.emplace(id, std::move(device));
  }
  changed();
  return id;
}

void SimAudioSystem::removeDevice(AudioDeviceID id) {
  {
    std::lock_guard lock(mutex_);
    devices_.erase(id);
    if (defaultOutput_ == id) defaultOutput_.reset();
    if (defaultInput_ == id) defaultInput_.reset();
  }
  changed();
}

void SimAudioSystem::makeDefault(AudioDirection direction, std::optional<AudioDeviceID> id) {
  {
    std::lock_guard lock(mutex_);
    (direction == AudioDirection::output ? defaultOutput_ : defaultInput_) = id;
  }
  changed();
}

void SimAudioSystem::setOutcome(SetOutcome outcome) {
  std::lock_guard lock(mutex_);
  outcome_ = outcome;
  unreadable_ = false;
}

void SimAudioSystem::stopServer() {
  {
    std::lock_guard lock(mutex_);
    serverAnswers_ = false;
    devices_.clear();
    defaultOutput_.reset();
    defaultInput_.reset();
  }
  changed();
}

void SimAudioSystem::failNameReads(AudioDeviceID id, std::int32_t status) {
  std::lock_guard lock(mutex_);
  failingNames_[id] = status;
}

int SimAudioSystem::setCalls(AudioDirection direction) const {
  std::lock_guard lock(mutex_);
  auto found = setCalls_.find(direction);
  return found == setCalls_.end() ? 0 : found->second;
}

int SimAudioSystem::nameReads() const {
  std::lock_guard lock(mutex_);
  return nameReads_;
}

} // namespace lb
