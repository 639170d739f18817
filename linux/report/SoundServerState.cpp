#include "linux/report/SoundServerState.h"

#include "foundation/Printing.h"
#include "linux/report/ReportCancelled.h"

#include <pulse/pulseaudio.h>

#include <chrono>
#include <memory>

namespace lb {

namespace {

struct Query {
  std::string server, sinks, sources, cards;
  int pending = 0;
};

// Names and properties are outside text: none may begin a line of its own.
std::string named(const char* text) { return text ? pxrPrintable(text) : ""; }

std::string properties(pa_proplist* list) {
  std::string text;
  void* state = nullptr;
  while (const char* key = pa_proplist_iterate(list, &state)) {
    const char* value = pa_proplist_gets(list, key); // none for a binary value
    text += "      " + named(key) + " = \"" + (value ? named(value) : "(binary)") + "\"\n";
  }
  return text;
}

// Counts a request until its answer's end.
void awaiting(Query& query, pa_operation* operation) {
  if (operation) {
    ++query.pending;
    pa_operation_unref(operation);
  }
}

// Whether a list's answer has ended (or failed): nothing more comes.
bool ended(Query& query, int last) {
  if (last) --query.pending;
  return last != 0;
}

void serverInfo(pa_context*, const pa_server_info* info, void* data) {
  auto& query = *static_cast<Query*>(data);
  --query.pending;
  if (!info) return;
  query.server = "Server: " + named(info->server_name) + " " + named(info->server_version) +
                 "\nDefault sink: " + named(info->default_sink_name) +
                 "\nDefault source: " + named(info->default_source_name) + "\n";
}

// A sink or a source, into its list of the query.
template <class Info, std::string Query::*list>
void deviceInfo(pa_context*, const Info* info, int last, void* data) {
  auto& query = *static_cast<Query*>(data);
  if (ended(query, last)) return;
  query.*list += "  #" + std::to_string(info->index) + " " + named(info->name) + " “" + named(info->description) + "”" +
                 (info->mute ? " muted" : "") + "\n" + properties(info->proplist);
}

void cardInfo(pa_context*, const pa_card_info* info, int last, void* data) {
  auto& query = *static_cast<Query*>(data);
  if (ended(query, last)) return;
  query.cards += "  #" + std::to_string(info->index) + " " + named(info->name) + "\n";
  for (std::uint32_t i = 0; i < info->n_profiles; ++i) {
    const auto* profile = info->profiles2[i];
    const bool active = info->active_profile2 && info->active_profile2->name == std::string(profile->name);
    query.cards += "    profile " + named(profile->name) + " “" + named(profile->description) + "”" +
                   (profile->available ? "" : " unavailable") + (active ? " (active)" : "") + "\n";
  }
  query.cards += properties(info->proplist);
}

} // namespace

std::string SoundServerState::describe(const std::atomic<bool>& cancelled) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::seconds(5);
  std::unique_ptr<pa_mainloop, decltype(&pa_mainloop_free)> loop(pa_mainloop_new(), pa_mainloop_free);
  std::unique_ptr<pa_context, decltype(&pa_context_unref)> context(
      pa_context_new(pa_mainloop_get_api(loop.get()), "Lanternbud diagnostic report"), pa_context_unref);
  // Turns the loop until `finished`, the deadline or a cancel; false at the
  // deadline.
  auto turn = [&](auto finished) {
    while (!finished()) {
      throwIfCancelled(cancelled);
      if (Clock::now() > deadline) return false;
      if (pa_mainloop_prepare(loop.get(), 100'000) < 0 || pa_mainloop_poll(loop.get()) < 0 ||
          pa_mainloop_dispatch(loop.get()) < 0)
        return false;
    }
    return true;
  };
  if (pa_context_connect(context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
    return std::string("No sound server: ") + pa_strerror(pa_context_errno(context.get())) + "\n";
  const bool ready = turn([&] {
    const auto state = pa_context_get_state(context.get());
    return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
  });
  if (!ready || pa_context_get_state(context.get()) != PA_CONTEXT_READY) {
    return std::string("No sound server answers: ") + pa_strerror(pa_context_errno(context.get())) + "\n";
  }
  Query query;
  awaiting(query, pa_context_get_server_info(context.get(), serverInfo, &query));
  awaiting(query, pa_context_get_sink_info_list(context.get(), deviceInfo<pa_sink_info, &Query::sinks>, &query));
  awaiting(query, pa_context_get_source_info_list(context.get(), deviceInfo<pa_source_info, &Query::sources>, &query));
  awaiting(query, pa_context_get_card_info_list(context.get(), cardInfo, &query));
  const bool answered = turn([&] { return query.pending == 0; });
  pa_context_disconnect(context.get());
  auto text = query.server + "\nSinks\n" + query.sinks + "\nSources\n" + query.sources + "\nCards\n" + query.cards;
  if (!answered) text += "\nThe sound server did not answer every question within 5 s.\n";
  return text;
}

} // namespace lb
