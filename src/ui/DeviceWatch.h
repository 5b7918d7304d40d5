#pragma once
// SysInfo1: the system's notices that a drive arrived or was removed. On Linux the
// drive services' mount-change handle is watched; on Windows WM_DEVICECHANGE is read.

#include <QObject>
#include <memory>

#include "drive/Volumes.h"

namespace tvk::ui {

class DeviceWatch : public QObject {
    Q_OBJECT
  public:
    DeviceWatch(std::shared_ptr<Volumes> volumes, QObject* parent = nullptr);
    ~DeviceWatch() override;

  signals:
    void notice(const tvk::DeviceNotice& notice);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace tvk::ui
