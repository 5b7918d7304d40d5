#pragma once
// mmcMain: plays MP3 (and MIDI where the platform's media framework can) inside the
// program; what it cannot play goes to the desktop's own player.

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

class QMediaPlayer;
class QAudioOutput;

namespace tvk::ui {

class MediaPlayer : public QObject {
    Q_OBJECT
  public:
    explicit MediaPlayer(QObject* parent = nullptr);
    ~MediaPlayer() override;

    // Status panel 1 texts go through `status`; `fallback` hands a file the framework
    // cannot play to the desktop (returns false when that fails too).
    std::function<void(const QString&)> status;
    std::function<bool(const QString& file)> fallback;

    void play(const QString& file, const QString& name);
    void stop();
    bool playing() const;

  private:
    void close();
    QMediaPlayer* player();
    QMediaPlayer* player_ = nullptr;
    QAudioOutput* audio_ = nullptr;
    QString file_, name_;
};

}  // namespace tvk::ui
