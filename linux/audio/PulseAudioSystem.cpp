#include "linux/audio/PulseAudioSystem.h"

#include "foundation/BluetoothAddress.h"
#include "foundation/PXRLog.h"

#include <algorithm>
#include <cctype>

namespace lb {

namespace {

std::string property(const pa_proplist* properties, const char* key) {
  const char* value = pa_proplist_gets(properties, key);
  return value ? value : "";
}

} // namespace

PulseAudioSystem::PulseAudioSystem(std::string server)
    : server_(std::move(server)), mainloop_(pa_threaded_mainloop_new()) {
  pa_threaded_mainloop_start(mainloop_);
  pa_threaded_mainloop_lock(mainloop_);
  connect();
  // The devices are known before the first question, if the server answers
  // within a second; otherwise they arrive when it does.
  waitFor([&] { return serverInfos_ > 0; }, 1000);
  pa_threaded_mainloop_unlock(mainloop_);
}

PulseAudioSystem::~PulseAudioSystem() {
  pa_threaded_mainloop_lock(mainloop_);
  stopping_ = true;
  if (reconnectTimer_) {
    auto* api = pa_threaded_mainloop_get_api(mainloop_);
    api->time_free(reconnectTimer_);
    reconnectTimer_ = nullptr;
  }
  if (context_) {
    pa_context_disconnect(context_);
    pa_context_unref(context_);
    context_ = nullptr;
  }
  pa_threaded_mainloop_unlock(mainloop_);
  pa_threaded_mainloop_stop(mainloop_);
  pa_threaded_mainloop_free(mainloop_);
}

void PulseAudioSystem::connect() {
  ++attempts_;
  context_ = pa_context_new(pa_threaded_mainloop_get_api(mainloop_), "Lanternbud");
  pa_context_set_state_callback(context_, stateChanged, this);
  pa_context_set_subscribe_callback(context_, eventArrived, this);
  // NOFAIL: with no server yet, wait for one instead of failing.
  pa_context_connect(context_, server_.empty() ? nullptr : server_.c_str(),
                     static_cast<pa_context_flags_t>(PA_CONTEXT_NOFAIL | PA_CONTEXT_NOAUTOSPAWN), nullptr);
}

void PulseAudioSystem::track(void* operation) {
  ++requests_;
  if (operation) pa_operation_unref(static_cast<pa_operation*>(operation));
}

void PulseAudioSystem::requestAll() {
  track(pa_context_get_sink_info_list(context_, sinkInfo, this));
  track(pa_context_get_source_info_list(context_, sourceInfo, this));
  track(pa_context_get_server_info(context_, serverInfo, this));
}

void PulseAudioSystem::stateChanged(pa_context* context, void* userdata) {
  auto* self = static_cast<PulseAudioSystem*>(userdata);
  switch (pa_context_get_state(context)) {
  case PA_CONTEXT_READY:
    self->ready_ = true;
    self->retryMilliseconds_ = 500;
    self->track(pa_context_subscribe(context,
                                     static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK |
                                                                         PA_SUBSCRIPTION_MASK_SOURCE |
                                                                         PA_SUBSCRIPTION_MASK_SERVER),
                                     nullptr, nullptr));
    self->requestAll();
    break;
  case PA_CONTEXT_FAILED:
  case PA_CONTEXT_TERMINATED:
    if (self->stopping_) break;
    if (self->ready_) PXR_LOG_ERROR("Lost the sound server; no audio devices until it returns.");
    if (!self->ready_ && self->attempts_ == 1) {
      PXR_LOG_ERROR("No sound server answers (" + std::string(pa_strerror(pa_context_errno(context))) +
                    "); no audio devices until one starts.");
    }
    self->ready_ = false;
    {
      std::lock_guard lock(self->mutex_);
      for (auto& [id, device] : self->devices_) device.present = false;
      self->defaultSink_.clear();
      self->defaultSource_.clear();
    }
    self->changed();
    self->scheduleReconnect();
    break;
  default: break;
  }
  pa_threaded_mainloop_signal(self->mainloop_, 0);
}

// A context cannot be replaced from its own callback: a timer does it.
void PulseAudioSystem::scheduleReconnect() {
  if (reconnectTimer_) return;
  auto* api = pa_threaded_mainloop_get_api(mainloop_);
  timeval when{};
  pa_gettimeofday(&when);
  pa_timeval_add(&when, static_cast<pa_usec_t>(retryMilliseconds_) * 1000);
  retryMilliseconds_ = std::min(retryMilliseconds_ * 2, 30'000);
  reconnectTimer_ = api->time_new(api, &when, reconnect, this);
}

void PulseAudioSystem::reconnect(pa_mainloop_api* api, pa_time_event* event, const struct timeval*, void* userdata) {
  auto* self = static_cast<PulseAudioSystem*>(userdata);
  api->time_free(event);
  self->reconnectTimer_ = nullptr;
  if (self->stopping_) return;
  pa_context_unref(self->context_);
  self->connect();
}

void PulseAudioSystem::eventArrived(pa_context* context, pa_subscription_event_type_t event, std::uint32_t index,
                                    void* userdata) {
  auto* self = static_cast<PulseAudioSystem*>(userdata);
  const auto facility = event & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
  const bool removed = (event & PA_SUBSCRIPTION_EVENT_TYPE_MASK) == PA_SUBSCRIPTION_EVENT_REMOVE;
  if (facility == PA_SUBSCRIPTION_EVENT_SINK) {
    if (removed) self->forget(true, index);
    else self->track(pa_context_get_sink_info_by_index(context, index, sinkInfo, self));
  } else if (facility == PA_SUBSCRIPTION_EVENT_SOURCE) {
    if (removed) self->forget(false, index);
    else self->track(pa_context_get_source_info_by_index(context, index, sourceInfo, self));
  } else if (facility == PA_SUBSCRIPTION_EVENT_SERVER) {
    self->track(pa_context_get_server_info(context, serverInfo, self));
  }
  pa_threaded_mainloop_signal(self->mainloop_, 0);
}

void PulseAudioSystem::sinkInfo(pa_context*, const pa_sink_info* info, int eol, void* userdata) {
  auto* self = static_cast<PulseAudioSystem*>(userdata);
  if (eol == 0 && info)
    self->remember(true, info->index, info->name, info->description ? info->description : "", info->proplist);
  pa_threaded_mainloop_signal(self->mainloop_, 0);
}

void PulseAudioSystem::sourceInfo(pa_context*, const pa_source_info* info, int eol, void* userdata) {
  auto* self = static_cast<PulseAudioSystem*>(userdata);
  // A sink's monitor is how to record what it plays, not a microphone.
  if (eol == 0 && info && info->monitor_of_sink == PA_INVALID_INDEX) {
    self->remember(false, info->index, info->name, info->description ? info->description : "", info->proplist);
  }
  pa_threaded_mainloop_signal(self->mainloop_, 0);
}

void PulseAudioSystem::serverInfo(pa_context*, const pa_server_info* info, void* userdata) {
  auto* self = static_cast<PulseAudioSystem*>(userdata);
  if (info) {
    std::string sink = info->default_sink_name ? info->default_sink_name : "";
    std::string source = info->default_source_name ? info->default_source_name : "";
    bool different;
    {
      std::lock_guard lock(self->mutex_);
      different = sink != self->defaultSink_ || source != self->defaultSource_;
      self->defaultSink_ = std::move(sink);
      self->defaultSource_ = std::move(source);
    }
    if (different) self->changed();
  }
  ++self->serverInfos_;
  pa_threaded_mainloop_signal(self->mainloop_, 0);
}

AudioDeviceID PulseAudioSystem::idFor(bool output, const std::string& name) {
  auto key = (output ? "sink:" : "source:") + name;
  auto [found, added] = ids_.emplace(key, nextID_);
  if (added) ++nextID_;
  return found->second;
}

void PulseAudioSystem::remember(bool output, std::uint32_t index, const std::string& name,
                                const std::string& description, const void* properties) {
  auto* list = static_cast<const pa_proplist*>(properties);
  Device device{output, name, description, "", property(list, "device.serial"), index, true};
  if (property(list, "device.bus") == "bluetooth") {
    auto address = BluetoothAddress::findIn(property(list, "api.bluez5.address"));
    if (!address) address = BluetoothAddress::findIn(property(list, "device.string"));
    device.address = address ? address->toString() : "";
  }
  if (device.serial.empty()) device.serial = name;
  bool different;
  {
    std::lock_guard lock(mutex_);
    auto& known = devices_[idFor(output, name)];
    different = known != device;
    known = std::move(device);
  }
  if (different) changed();
}

void PulseAudioSystem::forget(bool output, std::uint32_t index) {
  bool different = false;
  {
    std::lock_guard lock(mutex_);
    for (auto& [id, device] : devices_) {
      if (device.present && device.output == output && device.index == index) {
        device.present = false;
        different = true;
      }
    }
  }
  if (different) changed();
}

std::optional<PulseAudioSystem::Device> PulseAudioSystem::device(AudioDeviceID id) const {
  std::lock_guard lock(mutex_);
  auto found = devices_.find(id);
  if (found == devices_.end() || !found->second.present) return std::nullopt;
  return found->second;
}

std::vector<AudioDeviceID> PulseAudioSystem::deviceIDs() const {
  std::lock_guard lock(mutex_);
  std::vector<AudioDeviceID> ids;
  for (const auto& [id, device] : devices_) {
    if (device.present) ids.push_back(id);
  }
  return ids;
}

AudioRead<std::string> PulseAudioSystem::name(AudioDeviceID id) const {
  auto found = device(id);
  if (!found) return {-PA_ERR_NOENTITY, std::nullopt};
  return {0, found->description.empty() ? found->name : found->description};
}

// A Bluetooth device's identifier carries its address, so that it can be
// matched to its Bluetooth device.
AudioRead<std::string> PulseAudioSystem::uid(AudioDeviceID id) const {
  auto found = device(id);
  if (!found) return {-PA_ERR_NOENTITY, std::nullopt};
  return {0, found->address.empty() ? found->name : found->name + " " + found->address};
}

AudioRead<std::string> PulseAudioSystem::serialNumber(AudioDeviceID id) const {
  auto found = device(id);
  if (!found) return {-PA_ERR_NOENTITY, std::nullopt};
  return {0, found->serial};
}

AudioRead<std::uint32_t> PulseAudioSystem::transportType(AudioDeviceID id) const {
  auto found = device(id);
  if (!found) return {-PA_ERR_NOENTITY, std::nullopt};
  return {0, found->address.empty() ? 0u : bluetoothTransport};
}

AudioRead<bool> PulseAudioSystem::hasOutputStreams(AudioDeviceID id) const {
  auto found = device(id);
  if (!found) return {-PA_ERR_NOENTITY, std::nullopt};
  return {0, found->output};
}

std::optional<AudioDeviceID> PulseAudioSystem::defaultDevice(AudioDirection direction) const {
  std::lock_guard lock(mutex_);
  const bool output = direction == AudioDirection::output;
  const auto& name = output ? defaultSink_ : defaultSource_;
  for (const auto& [id, device] : devices_) {
    if (device.present && device.output == output && device.name == name) return id;
  }
  return std::nullopt;
}

bool PulseAudioSystem::waitFor(const std::function<bool()>& done, int milliseconds) {
  struct Deadline {
    pa_threaded_mainloop* loop;
    bool passed = false;
  } deadline{mainloop_};
  auto* api = pa_threaded_mainloop_get_api(mainloop_);
  timeval when{};
  pa_gettimeofday(&when);
  pa_timeval_add(&when, static_cast<pa_usec_t>(milliseconds) * 1000);
  auto* timer = api->time_new(
      api, &when,
      [](pa_mainloop_api*, pa_time_event*, const timeval*, void* userdata) {
        auto* reached = static_cast<Deadline*>(userdata);
        reached->passed = true;
        pa_threaded_mainloop_signal(reached->loop, 0);
      },
      &deadline);
  while (!done() && !deadline.passed) pa_threaded_mainloop_wait(mainloop_);
  api->time_free(timer);
  return done();
}

std::int32_t PulseAudioSystem::setDefaultDevice(AudioDirection direction, AudioDeviceID id) {
  auto target = device(id);
  if (!target) return -PA_ERR_NOENTITY;
  const bool output = direction == AudioDirection::output;
  if (target->output != output) return -PA_ERR_INVALID;

  pa_threaded_mainloop_lock(mainloop_);
  if (!ready_) {
    pa_threaded_mainloop_unlock(mainloop_);
    PXR_LOG_ERROR("Cannot set the default " + std::string(output ? "output" : "input") + " to " + target->name +
                  ": there is no sound server (is PulseAudio or PipeWire running?).");
    return -PA_ERR_CONNECTIONREFUSED;
  }
  struct Confirmation {
    pa_threaded_mainloop* loop;
    bool answered = false;
    bool success = false;
  } confirmation{mainloop_};
  auto confirmed = [](pa_context*, int success, void* userdata) {
    auto* answer = static_cast<Confirmation*>(userdata);
    answer->answered = true;
    answer->success = success != 0;
    pa_threaded_mainloop_signal(answer->loop, 0);
  };
  auto* operation = output ? pa_context_set_default_sink(context_, target->name.c_str(), confirmed, &confirmation)
                           : pa_context_set_default_source(context_, target->name.c_str(), confirmed, &confirmation);
  ++requests_;
  std::int32_t status = 0;
  if (!waitFor([&] { return confirmation.answered; }, 2000)) {
    // The confirmation may still come; it must not write into this frame.
    pa_operation_cancel(operation);
    status = -PA_ERR_TIMEOUT;
  } else if (!confirmation.success) {
    status = -pa_context_errno(context_);
  } else {
    // Read the default back, so that a verification that follows sees what
    // the server now says.
    auto answers = serverInfos_;
    track(pa_context_get_server_info(context_, serverInfo, this));
    waitFor([&] { return serverInfos_ > answers; }, 2000);
  }
  pa_operation_unref(operation);
  pa_threaded_mainloop_unlock(mainloop_);
  return status;
}

} // namespace lb
