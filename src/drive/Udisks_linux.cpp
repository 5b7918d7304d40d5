// udisks2 through libsystemd's D-Bus client: typed arguments (a label needs no quoting)
// and udisks' error message as it sent it.

#include <systemd/sd-bus.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>

#include "drive/Udisks.h"

namespace tvk::udisks {

namespace {

constexpr const char* kService = "org.freedesktop.UDisks2";
constexpr std::uint64_t kSecond = 1000000;  // sd-bus counts microseconds
// mkfs on a large stick takes a while; the rest is quick unless the device hangs or
// the user is still typing a password.
constexpr std::uint64_t kFormatTimeout = 600 * kSecond;
constexpr std::uint64_t kCallTimeout = 120 * kSecond;

using Arguments = std::function<int(sd_bus_message*)>;

std::string errorText(const sd_bus_error& error, int rc) {
    if (sd_bus_error_has_name(&error, SD_BUS_ERROR_SERVICE_UNKNOWN) ||
        sd_bus_error_has_name(&error, SD_BUS_ERROR_NAME_HAS_NO_OWNER))
        return kMissing;
    if (error.message && *error.message) return error.message;
    if (error.name) return error.name;
    return std::string("udisks2: ") + std::strerror(-rc);
}

std::string call(const std::string& device, const char* interface, const char* method,
                 std::uint64_t timeout, const Arguments& arguments) {
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) < 0) {
        sd_bus_unref(bus);
        return kMissing;
    }
    sd_bus_message* request = nullptr;
    sd_bus_message* reply = nullptr;
    sd_bus_error error = SD_BUS_ERROR_NULL;
    int rc = sd_bus_message_new_method_call(bus, &request, kService,
                                            blockObjectPath(device).c_str(), interface, method);
    // Where the desktop's policy wants a password, its agent asks for it rather than the
    // call failing as not authorized.
    if (rc >= 0) rc = sd_bus_message_set_allow_interactive_authorization(request, 1);
    if (rc >= 0) rc = arguments(request);
    if (rc >= 0) rc = sd_bus_call(bus, request, timeout, &error, &reply);
    const std::string problem = rc < 0 ? errorText(error, rc) : std::string();
    sd_bus_error_free(&error);
    sd_bus_message_unref(reply);
    sd_bus_message_unref(request);
    sd_bus_flush_close_unref(bus);
    return problem;
}

int noOptions(sd_bus_message* m) {
    return sd_bus_message_append(m, "a{sv}", 0);
}

}  // namespace

std::string blockObjectPath(const std::string& device) {
    std::string path = "/org/freedesktop/UDisks2/block_devices/";
    for (const char c : device) {
        const bool plain =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
        if (plain) {
            path += c;
        } else {
            char hex[4];
            std::snprintf(hex, sizeof hex, "_%02x", static_cast<unsigned char>(c));
            path += hex;
        }
    }
    return path;
}

std::string setLabel(const std::string& device, const std::string& label) {
    return call(device, "org.freedesktop.UDisks2.Filesystem", "SetLabel", kCallTimeout,
                [&](sd_bus_message* m) {
                    const int rc = sd_bus_message_append(m, "s", label.c_str());
                    return rc < 0 ? rc : noOptions(m);
                });
}

std::string unmount(const std::string& device) {
    return call(device, "org.freedesktop.UDisks2.Filesystem", "Unmount", kCallTimeout, noOptions);
}

std::string mount(const std::string& device) {
    return call(device, "org.freedesktop.UDisks2.Filesystem", "Mount", kCallTimeout, noOptions);
}

std::string formatFat(const std::string& device, const std::string& label) {
    return call(device, "org.freedesktop.UDisks2.Block", "Format", kFormatTimeout,
                [&](sd_bus_message* m) {
                    int rc = sd_bus_message_append(m, "s", "vfat");
                    // The partition (if any) is marked FAT too, so Windows takes it.
                    if (rc >= 0 && label.empty())
                        rc = sd_bus_message_append(m, "a{sv}", 1, "update-partition-type", "b", 1);
                    else if (rc >= 0)
                        rc = sd_bus_message_append(m, "a{sv}", 2, "update-partition-type", "b", 1,
                                                   "label", "s", label.c_str());
                    return rc;
                });
}

}  // namespace tvk::udisks
