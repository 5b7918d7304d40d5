#include <QSocketNotifier>

#include "ui/DeviceWatch.h"

namespace tvk::ui {

struct DeviceWatch::Impl {
    std::shared_ptr<Volumes> volumes;
    std::unique_ptr<QSocketNotifier> notifier;
};

DeviceWatch::DeviceWatch(std::shared_ptr<Volumes> volumes, QObject* parent)
    : QObject(parent), impl_(std::make_unique<Impl>()) {
    setObjectName("SysInfo1");
    impl_->volumes = std::move(volumes);
    const int handle = impl_->volumes ? impl_->volumes->noticeHandle() : -1;
    if (handle < 0) return;
    // The mount table signals a change as an exceptional condition (POLLPRI).
    impl_->notifier = std::make_unique<QSocketNotifier>(handle, QSocketNotifier::Exception);
    connect(impl_->notifier.get(), &QSocketNotifier::activated, this, [this] {
        for (const auto& n : impl_->volumes->takeNotices()) emit notice(n);
    });
}

DeviceWatch::~DeviceWatch() = default;

}  // namespace tvk::ui
