#include <windows.h>
// dbt.h needs the types windows.h declares.
#include <dbt.h>

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>

#include "ui/DeviceWatch.h"

namespace tvk::ui {

namespace {

// Volume arrivals and removals reach every top-level window as WM_DEVICECHANGE.
class DeviceChangeFilter : public QAbstractNativeEventFilter {
  public:
    explicit DeviceChangeFilter(DeviceWatch* watch) : watch_(watch) {}
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override {
        if (type != "windows_generic_MSG") return false;
        const MSG* msg = static_cast<const MSG*>(message);
        if (msg->message != WM_DEVICECHANGE) return false;
        if (msg->wParam != DBT_DEVICEARRIVAL && msg->wParam != DBT_DEVICEREMOVECOMPLETE)
            return false;
        const auto* header = reinterpret_cast<const DEV_BROADCAST_HDR*>(msg->lParam);
        if (!header || header->dbch_devicetype != DBT_DEVTYP_VOLUME) return false;
        const auto* volume = reinterpret_cast<const DEV_BROADCAST_VOLUME*>(header);
        DeviceNotice n;
        n.kind = msg->wParam == DBT_DEVICEARRIVAL ? DeviceNotice::Kind::Arrival
                                                  : DeviceNotice::Kind::Removal;
        n.drive = GetDrive(volume->dbcv_unitmask);
        n.deviceId = n.drive.empty() ? std::string() : n.drive + ":";
        if (!n.drive.empty()) emit watch_->notice(n);
        return false;
    }

  private:
    DeviceWatch* watch_;
};

}  // namespace

struct DeviceWatch::Impl {
    std::shared_ptr<Volumes> volumes;
    std::unique_ptr<DeviceChangeFilter> filter;
};

DeviceWatch::DeviceWatch(std::shared_ptr<Volumes> volumes, QObject* parent)
    : QObject(parent), impl_(std::make_unique<Impl>()) {
    setObjectName("SysInfo1");
    impl_->volumes = std::move(volumes);
    impl_->filter = std::make_unique<DeviceChangeFilter>(this);
    QCoreApplication::instance()->installNativeEventFilter(impl_->filter.get());
}

DeviceWatch::~DeviceWatch() {
    if (auto* app = QCoreApplication::instance()) app->removeNativeEventFilter(impl_->filter.get());
}

}  // namespace tvk::ui
