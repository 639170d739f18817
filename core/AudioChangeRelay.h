#pragma once

#include "core/AudioDeviceManager.h"
#include "ports/EventLoop.h"

#include <atomic>
#include <functional>
#include <memory>

namespace lb {

// Brings the audio system's news of changed devices or defaults, told on
// whatever thread saw them, to the main thread. A burst of changes (a
// server's whole device list) queues one call, and nothing is called once
// the relay is gone.
class AudioChangeRelay {
public:
  AudioChangeRelay(AudioDeviceManager& audio, EventLoop& loop, std::function<void()> onMainThread)
      : audio_(audio), pending_(std::make_shared<Pending>(std::move(onMainThread))) {
    audio_.setChangeHandler([&loop, weak = std::weak_ptr<Pending>(pending_)] {
      auto pending = weak.lock();
      if (!pending || pending->queued.exchange(true)) return;
      loop.post([weak] {
        if (auto alive = weak.lock()) {
          alive->queued = false;
          alive->call();
        }
      });
    });
  }
  ~AudioChangeRelay() { audio_.setChangeHandler({}); }

  AudioChangeRelay(const AudioChangeRelay&) = delete;
  AudioChangeRelay& operator=(const AudioChangeRelay&) = delete;

private:
  struct Pending {
    explicit Pending(std::function<void()> onMainThread) : call(std::move(onMainThread)) {}
    std::function<void()> call;
    std::atomic<bool> queued = false;
  };

  AudioDeviceManager& audio_;
  std::shared_ptr<Pending> pending_;
};

} // namespace lb
