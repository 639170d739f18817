#pragma once

#include "ports/AudioSystem.h"

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>

#include <pulse/pulseaudio.h>

namespace lb {

// The audio port over libpulse, which serves PulseAudio and PipeWire (through
// pipewire-pulse) alike. Sinks are outputs, sources inputs (monitors left
// out). A mirror of the devices and defaults, kept current from the server's
// events, answers every query: idle, nothing is asked of the server. A
// change of the mirror (not a volume change) is told on libpulse's thread.
// Setting a default waits, at most two seconds, for the server to confirm
// and for the new default to be read back.
//
// libpulse runs on its own thread (a threaded main loop): the bounded wait of
// a set needs the loop to keep turning while the caller waits, and the
// program's Qt thread never sees a libpulse callback. When the server goes
// away, the mirror empties and a new connection waits for its return.
class PulseAudioSystem final : public AudioSystem {
public:
  // `server` as libpulse takes it ("unix:/path"); empty for the session's own.
  explicit PulseAudioSystem(std::string server = {});
  ~PulseAudioSystem() override;

  PulseAudioSystem(const PulseAudioSystem&) = delete;
  PulseAudioSystem& operator=(const PulseAudioSystem&) = delete;

  std::vector<AudioDeviceID> deviceIDs() const override;
  AudioRead<std::string> name(AudioDeviceID id) const override;
  AudioRead<std::string> uid(AudioDeviceID id) const override;
  AudioRead<std::string> serialNumber(AudioDeviceID id) const override;
  AudioRead<std::uint32_t> transportType(AudioDeviceID id) const override;
  AudioRead<bool> hasOutputStreams(AudioDeviceID id) const override;
  bool serverAnswers() const override { return ready_; }
  std::optional<AudioDeviceID> defaultDevice(AudioDirection direction) const override;
  std::int32_t setDefaultDevice(AudioDirection direction, AudioDeviceID id) override;

  // Every request sent to the server so far, for the idle benchmark.
  std::uint64_t requestsSent() const { return requests_; }
  // Every connection to the server tried so far.
  std::uint64_t connectionAttempts() const { return attempts_; }

private:
  struct Device {
    bool output;
    std::string name;        // the server's name, which identifies it
    std::string description; // what people see
    std::string address;     // a Bluetooth device's address, as BlueZ writes it
    std::string serial;
    std::uint32_t index = 0; // the server's index while present
    bool present = false;

    bool operator==(const Device&) const = default;
  };

  static void stateChanged(pa_context* context, void* self);
  static void eventArrived(pa_context* context, pa_subscription_event_type_t event, std::uint32_t index, void* self);
  static void sinkInfo(pa_context* context, const pa_sink_info* info, int eol, void* self);
  static void sourceInfo(pa_context* context, const pa_source_info* info, int eol, void* self);
  static void serverInfo(pa_context* context, const pa_server_info* info, void* self);
  static void reconnect(pa_mainloop_api* api, pa_time_event* event, const struct timeval*, void* self);

  void connect();
  // After a growing delay: a server that is away is not asked for in a loop.
  void scheduleReconnect();
  void requestAll();
  // With the main loop locked: waits until `done` holds or time is up.
  bool waitFor(const std::function<bool()>& done, int milliseconds);
  void track(void* operation);
  AudioDeviceID idFor(bool output, const std::string& name);
  void remember(bool output, std::uint32_t index, const std::string& name, const std::string& description,
                const void* properties);
  void forget(bool output, std::uint32_t index);
  std::optional<Device> device(AudioDeviceID id) const;

  const std::string server_;
  pa_threaded_mainloop* mainloop_;
  pa_context* context_ = nullptr; // touched with the main loop locked
  std::atomic<bool> ready_ = false;
  std::atomic<bool> stopping_ = false;
  std::uint64_t serverInfos_ = 0; // answers so far, with the main loop locked
  std::atomic<std::uint64_t> requests_ = 0;
  std::atomic<std::uint64_t> attempts_ = 0;
  // With the main loop locked:
  pa_time_event* reconnectTimer_ = nullptr;
  int retryMilliseconds_ = 500; // doubles to 30 s while the server stays away

  mutable std::mutex mutex_; // the mirror
  std::map<AudioDeviceID, Device> devices_;
  std::map<std::string, AudioDeviceID> ids_; // stable for the process: by kind and name
  AudioDeviceID nextID_ = 1;
  std::string defaultSink_;
  std::string defaultSource_;
};

} // namespace lb
