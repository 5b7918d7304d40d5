#pragma once
// mmcMain: plays MP3 (and MIDI where the platform's media framework can) inside the
// program, in a small strip that is shown while a file plays: play/pause, stop, the
// position and length, and the volume. What the framework cannot play goes to the
// desktop's own player.

#include <QString>
#include <QWidget>
#include <functional>

class QMediaPlayer;
class QAudioOutput;
class QLabel;
class QSlider;
class QToolButton;

namespace tvk::ui {

class MediaPlayer : public QWidget {
    Q_OBJECT
  public:
    explicit MediaPlayer(QWidget* parent = nullptr);
    ~MediaPlayer() override;

    // Status panel 1 texts go through `status`; `fallback` hands a file the framework
    // cannot play to the desktop (returns false when that fails too).
    std::function<void(const QString&)> status;
    std::function<bool(const QString& file)> fallback;

    void play(const QString& file, const QString& name);
    void stop();
    void togglePause();
    bool playing() const;
    bool paused() const;

    // "1:05 / 3:20"; the length alone while the framework does not know the position.
    static QString timeText(qint64 positionMs, qint64 lengthMs);

  private:
    void buildStrip();
    void showState();
    void failed(const QString& why);
    void release();
    QMediaPlayer* player();
    QMediaPlayer* player_ = nullptr;
    QAudioOutput* audio_ = nullptr;
    QToolButton* playPause_ = nullptr;
    QToolButton* stop_ = nullptr;
    QSlider* position_ = nullptr;
    QSlider* volume_ = nullptr;
    QLabel* title_ = nullptr;
    QLabel* time_ = nullptr;
    QString file_, name_;
};

}  // namespace tvk::ui
