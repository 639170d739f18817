#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace lb {

using AudioDeviceID = std::uint32_t;

enum class AudioDirection { input, output };

// A read from the audio system: a value, or a non-zero status saying why not.
template <class T>
struct AudioRead {
  std::int32_t status = 0;
  std::optional<T> value;
};

// The system's audio devices and its default input and output. Each device
// keeps one ID for the life of the process. Reads may come from any thread.
class AudioSystem {
public:
  // The transport type of a Bluetooth device: 'blue'.
  static constexpr std::uint32_t bluetoothTransport = 0x626c7565;

  virtual ~AudioSystem() = default;

  // Every device, inputs and outputs; empty when the system cannot say.
  virtual std::vector<AudioDeviceID> deviceIDs() const = 0;
  virtual AudioRead<std::string> name(AudioDeviceID id) const = 0;
  // A Bluetooth device's identifier contains its Bluetooth address.
  virtual AudioRead<std::string> uid(AudioDeviceID id) const = 0;
  virtual AudioRead<std::string> serialNumber(AudioDeviceID id) const = 0;
  virtual AudioRead<std::uint32_t> transportType(AudioDeviceID id) const = 0;
  virtual AudioRead<bool> hasOutputStreams(AudioDeviceID id) const = 0;

  // Whether a sound server answers. Without one there are no devices and no
  // default to set, and reconnecting a headset cannot bring its output.
  virtual bool serverAnswers() const = 0;

  virtual std::optional<AudioDeviceID> defaultDevice(AudioDirection direction) const = 0;
  // The status of the request; 0 when the system took it.
  virtual std::int32_t setDefaultDevice(AudioDirection direction, AudioDeviceID id) = 0;

  // `handler` runs after the devices or a default changed, on whichever
  // thread saw the change; it replaces the one before, and an empty one
  // stops the calls. Once this returns, the old handler is not running.
  void setChangeHandler(std::function<void()> handler) {
    std::lock_guard lock(handlerMutex_);
    handler_ = std::move(handler);
  }

protected:
  // For the implementation: the devices or defaults changed. Called with
  // none of its own locks held.
  void changed() {
    std::lock_guard lock(handlerMutex_);
    if (handler_) handler_();
  }

private:
  std::mutex handlerMutex_;
  std::function<void()> handler_;
};

} // namespace lb
