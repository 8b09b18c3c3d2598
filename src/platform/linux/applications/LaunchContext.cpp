#include "platform/linux/applications/LaunchContext.hpp"

namespace orvel {
namespace {

struct Context {
  GAppLaunchContext parent;
  const AnnounceLaunch* announce;
};

char* announce(GAppLaunchContext* context, GAppInfo*, GList*) {
  const std::string identifier = (*reinterpret_cast<Context*>(context)->announce)();
  return identifier.empty() ? nullptr : g_strdup(identifier.c_str());
}

void setUpClass(void* type, void*) {
  static_cast<GAppLaunchContextClass*>(type)->get_startup_notify_id = announce;
}

GType contextType() {
  static const GType type =
      g_type_register_static_simple(g_app_launch_context_get_type(), "OrvelLaunchContext",
                                    sizeof(GAppLaunchContextClass), setUpClass, sizeof(Context), nullptr, GTypeFlags{});
  return type;
}

}  // namespace

GLibPointer<GAppLaunchContext> makeLaunchContext(const AnnounceLaunch& announce) {
  auto* context = static_cast<Context*>(g_object_new(contextType(), nullptr));
  context->announce = &announce;
  return GLibPointer<GAppLaunchContext>(&context->parent);
}

}  // namespace orvel
