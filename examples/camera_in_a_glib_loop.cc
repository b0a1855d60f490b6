// A host with GLib's main loop, in which the camera's callbacks run. Asks three times for the battery.

#include <ZELTarkaSDK/Camera.h>

#include <glib.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <utility>

using Call = std::function<void()>;

// Runs the call in the context's next round. g_main_context_invoke() will not do: where nobody runs the context at the
// moment, it would make the call at once, on the camera's thread.
void post(GMainContext* context, Call call) {
  GSource* const source = g_idle_source_new();
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  const auto run = [](gpointer given) -> gboolean {
    (*static_cast<Call*>(given))();
    return G_SOURCE_REMOVE;
  };
  const auto destroy = [](gpointer given) { delete static_cast<Call*>(given); };
  g_source_set_callback(source, run, new Call(std::move(call)), destroy);
  g_source_attach(source, context);
  g_source_unref(source);
}

// What the loop's timer and the camera's callbacks share.
struct Host {
  zel::Camera& camera;
  GMainLoop* loop;
  int asked = 0, answered = 0;
};

gboolean ask(gpointer given) {
  Host& host = *static_cast<Host*>(given);
  host.camera.battery().then([&host](const zel::Result<zel::Battery>& battery) {
    battery ? std::printf("battery: %d %%\n", battery->level) : std::printf("%s\n", battery.error().message.c_str());
    if (++host.answered == 3) g_main_loop_quit(host.loop);
  });
  return ++host.asked < 3 ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

int main() {
  GMainContext* const context = g_main_context_default();  // outlives the camera
  auto camera = zel::Camera::open({.executor = [=](auto call) { post(context, std::move(call)); }}).get();
  if (!camera) return std::fprintf(stderr, "%s\n", camera.error().message.c_str()), 3;
  const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop(g_main_loop_new(context, FALSE),
                                                                      g_main_loop_unref);
  Host host{*camera, loop.get()};
  ask(&host);
  g_timeout_add_seconds(1, ask, &host);
  g_main_loop_run(loop.get());
}
