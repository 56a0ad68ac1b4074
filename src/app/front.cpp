// The program people and key bindings start. Most starts only pass a command
// to the running Quillon (a desktop shortcut runs `quillon --toggle-search`),
// and loading Qt, ICU and GLib for that costs several times the call itself.
// So this part links only libdbus and sends the command; everything else
// (becoming the instance, printing, a command when none runs, a session
// without a bus) is the full program, loaded from the library installed
// beside it.
#include <dbus/dbus.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <optional>
#include <string>
#include <unistd.h>

namespace {

constexpr const char *serviceName = "app.quillon.Quillon";
constexpr const char *objectPath = "/app/quillon/Quillon";
constexpr const char *applicationInterface = "org.freedesktop.Application";
constexpr int callTimeoutMs = 2000;
// Starting Quillon for a command takes its start-up, on a cold disk too.
constexpr int startTimeoutMs = 25000;

// The running instance's method for each command; the same names its own
// client sends.
std::optional<const char *> commandOf(int argc, char **argv)
{
    if (argc == 1)
        return "Reopen";
    if (argc != 2)
        return std::nullopt;
    const std::pair<const char *, const char *> commands[] = {
        {"--toggle-search", "ToggleSearch"}, {"--menu", "PopUpMenu"}, {"--settings", "ShowSettings"}};
    for (const auto &[option, method] : commands) {
        if (std::strcmp(argv[1], option) == 0)
            return method;
    }
    return std::nullopt;
}

struct Connection {
    DBusConnection *bus = nullptr;
    ~Connection()
    {
        if (bus) {
            dbus_connection_close(bus);
            dbus_connection_unref(bus);
        }
    }
};

enum class Sent { Delivered, NotUnderstood, Failed };

Sent call(DBusConnection *bus, DBusMessage *message, int timeoutMs)
{
    DBusError error;
    dbus_error_init(&error);
    DBusMessage *reply = dbus_connection_send_with_reply_and_block(bus, message, timeoutMs, &error);
    dbus_message_unref(message);
    if (reply) {
        dbus_message_unref(reply);
        return Sent::Delivered;
    }
    // An instance from before the activation was passed on knows only the
    // plain command.
    const bool notUnderstood = dbus_error_has_name(&error, DBUS_ERROR_UNKNOWN_METHOD)
                               || dbus_error_has_name(&error, DBUS_ERROR_UNKNOWN_INTERFACE);
    dbus_error_free(&error);
    return notUnderstood ? Sent::NotUnderstood : Sent::Failed;
}

// The proof that a person asked, as the desktop handed it to us, in
// org.freedesktop.Application's platform data.
void appendPlatformData(DBusMessageIter *arguments)
{
    DBusMessageIter dictionary;
    dbus_message_iter_open_container(arguments, DBUS_TYPE_ARRAY, "{sv}", &dictionary);
    const std::pair<const char *, const char *> keys[] = {{"activation-token", "XDG_ACTIVATION_TOKEN"},
                                                          {"desktop-startup-id", "DESKTOP_STARTUP_ID"}};
    for (const auto &[key, variable] : keys) {
        const char *value = std::getenv(variable);
        if (!value || !*value)
            continue;
        DBusMessageIter entry;
        DBusMessageIter variant;
        dbus_message_iter_open_container(&dictionary, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
        dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key);
        dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, "s", &variant);
        dbus_message_iter_append_basic(&variant, DBUS_TYPE_STRING, &value);
        dbus_message_iter_close_container(&entry, &variant);
        dbus_message_iter_close_container(&dictionary, &entry);
    }
    dbus_message_iter_close_container(arguments, &dictionary);
}

bool hasActivation()
{
    for (const char *variable : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
        const char *value = std::getenv(variable);
        if (value && *value)
            return true;
    }
    return false;
}

bool forward(const char *method)
{
    DBusError error;
    dbus_error_init(&error);
    Connection connection{dbus_bus_get_private(DBUS_BUS_SESSION, &error)};
    dbus_error_free(&error);
    if (!connection.bus)
        return false;
    dbus_connection_set_exit_on_disconnect(connection.bus, false);

    // With none running, a command (a key binding's --toggle-search) has the
    // bus start Quillon from its installed service file and then takes
    // effect. A plain start becomes the instance itself, in this process.
    const bool reopen = std::strcmp(method, "Reopen") == 0;
    const bool running = dbus_bus_name_has_owner(connection.bus, serviceName, nullptr);
    if (!running && reopen)
        return false;
    const int timeoutMs = running ? callTimeoutMs : startTimeoutMs;

    if (hasActivation()) {
        DBusMessage *message = dbus_message_new_method_call(serviceName, objectPath, applicationInterface,
                                                            reopen ? "Activate" : "ActivateAction");
        DBusMessageIter arguments;
        dbus_message_iter_init_append(message, &arguments);
        if (!reopen) {
            dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &method);
            DBusMessageIter parameters;
            dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, "v", &parameters);
            dbus_message_iter_close_container(&arguments, &parameters);
        }
        appendPlatformData(&arguments);
        dbus_message_set_auto_start(message, !running);
        if (const Sent sent = call(connection.bus, message, timeoutMs); sent != Sent::NotUnderstood)
            return sent == Sent::Delivered;
    }
    DBusMessage *message = dbus_message_new_method_call(serviceName, objectPath, serviceName, method);
    dbus_message_set_auto_start(message, !running);
    return call(connection.bus, message, timeoutMs) == Sent::Delivered;
}

// The full program: libquillon.so in the program's library folder, found
// from the bin folder this file is in, wherever the two were installed together.
int runFullProgram(int argc, char **argv)
{
    char self[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    if (length <= 0) {
        std::fprintf(stderr, "quillon: cannot find where it is installed\n");
        return 1;
    }
    std::string path(self, size_t(length));
    path.erase(path.rfind('/'));
    path += "/" QUILLON_LIBRARY_FROM_BIN;
    void *library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        std::fprintf(stderr, "quillon: %s\n", dlerror());
        return 1;
    }
    using Main = int (*)(int, char **);
    const auto quillonMain = reinterpret_cast<Main>(dlsym(library, "quillonMain"));
    if (!quillonMain) {
        std::fprintf(stderr, "quillon: %s\n", dlerror());
        return 1;
    }
    return quillonMain(argc, argv);
}

} // namespace

int main(int argc, char **argv)
{
    if (const auto method = commandOf(argc, argv); method && forward(*method))
        return 0;
    return runFullProgram(argc, argv);
}
