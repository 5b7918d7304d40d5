#include "ui/MediaPlayer.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QHBoxLayout>
#include <QLabel>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QSlider>
#include <QStyle>
#include <QToolButton>
#include <QUrl>

namespace tvk::ui {

namespace {

QString minutes(qint64 ms) {
    const qint64 s = ms / 1000;
    return QString("%1:%2").arg(s / 60).arg(s % 60, 2, 10, QChar('0'));
}

QToolButton* stripButton(const char* name, QStyle::StandardPixmap icon, const QString& tip,
                         QWidget* parent) {
    auto* b = new QToolButton(parent);
    b->setObjectName(name);
    b->setIcon(parent->style()->standardIcon(icon));
    b->setToolTip(tip);
    b->setAutoRaise(true);
    return b;
}

}  // namespace

QString MediaPlayer::timeText(qint64 positionMs, qint64 lengthMs) {
    return minutes(positionMs) + " / " + (lengthMs > 0 ? minutes(lengthMs) : QString("-:--"));
}

MediaPlayer::MediaPlayer(QWidget* parent) : QWidget(parent) {
    setObjectName("mmcMain");
    buildStrip();
    hide();
}

MediaPlayer::~MediaPlayer() = default;

void MediaPlayer::buildStrip() {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    playPause_ =
        stripButton("btnPlayPause", QStyle::SP_MediaPause, "Pauses or goes on playing", this);
    stop_ = stripButton("btnStop", QStyle::SP_MediaStop, "Stops playing and closes the file", this);
    title_ = new QLabel(this);
    title_->setObjectName("lblPlaying");
    position_ = new QSlider(Qt::Horizontal, this);
    position_->setObjectName("sldPosition");
    position_->setToolTip("Where the file is playing; drag to move");
    position_->setMinimumWidth(80);
    time_ = new QLabel(timeText(0, 0), this);
    time_->setObjectName("lblPlayTime");
    volume_ = new QSlider(Qt::Horizontal, this);
    volume_->setObjectName("sldVolume");
    volume_->setRange(0, 100);
    volume_->setValue(80);
    volume_->setMaximumWidth(70);
    volume_->setToolTip("Volume");
    for (QWidget* w : {static_cast<QWidget*>(playPause_), static_cast<QWidget*>(stop_),
                       static_cast<QWidget*>(title_), static_cast<QWidget*>(position_),
                       static_cast<QWidget*>(time_), static_cast<QWidget*>(volume_)})
        row->addWidget(w);
    connect(playPause_, &QToolButton::clicked, this, &MediaPlayer::togglePause);
    connect(stop_, &QToolButton::clicked, this, &MediaPlayer::stop);
    connect(position_, &QSlider::sliderMoved, this, [this](int ms) {
        if (player_) player_->setPosition(ms);
    });
    connect(volume_, &QSlider::valueChanged, this, [this](int v) {
        if (audio_) audio_->setVolume(v / 100.0f);
    });
}

// Made on first use: the media framework is slow to start and not every run plays.
QMediaPlayer* MediaPlayer::player() {
    if (player_) return player_;
    player_ = new QMediaPlayer(this);
    audio_ = new QAudioOutput(this);
    audio_->setVolume(volume_->value() / 100.0f);
    player_->setAudioOutput(audio_);
    // "Playing" only once the framework has the media; a file it cannot read ends in an
    // error instead.
    connect(player_, &QMediaPlayer::mediaStatusChanged, this, [this](QMediaPlayer::MediaStatus s) {
        if ((s == QMediaPlayer::LoadedMedia || s == QMediaPlayer::BufferedMedia) &&
            player_->playbackState() == QMediaPlayer::PlayingState && status && !file_.isEmpty())
            status("Playing " + name_);
        if (s == QMediaPlayer::EndOfMedia) {
            release();
            if (status) status("");
        }
    });
    connect(player_, &QMediaPlayer::errorOccurred, this,
            [this](QMediaPlayer::Error, const QString& why) { failed(why); });
    connect(player_, &QMediaPlayer::playbackStateChanged, this, [this] { showState(); });
    connect(player_, &QMediaPlayer::durationChanged, this, [this](qint64 ms) {
        position_->setRange(0, static_cast<int>(ms));
        showState();
    });
    connect(player_, &QMediaPlayer::positionChanged, this, [this](qint64 ms) {
        if (!position_->isSliderDown()) position_->setValue(static_cast<int>(ms));
        time_->setText(timeText(ms, player_->duration()));
    });
    return player_;
}

void MediaPlayer::failed(const QString& why) {
    const QString file = file_, name = name_;
    release();
    if (file.isEmpty()) return;
    if (file.endsWith(".mid", Qt::CaseInsensitive) && fallback && fallback(file)) {
        if (status) status("Playing " + name + " in the desktop's player");
        return;
    }
    if (status) status("Cannot play " + name + ": " + why);
}

void MediaPlayer::play(const QString& file, const QString& name) {
    if (status) status("Just a moment...");
    release();
    file_ = file;
    name_ = name;
    title_->setText(name);
    // Without a sound device the framework still plays, silently; say so.
    const bool silent = QMediaDevices::audioOutputs().isEmpty();
    title_->setToolTip(silent ? "This computer has no sound output: nothing can be heard"
                              : "Playing " + name);
    if (silent) title_->setText(name + " (no sound output)");
    position_->setValue(0);
    time_->setText(timeText(0, 0));
    auto* p = player();
    p->setSource(QUrl::fromLocalFile(file));  // "Open"
    p->play();                                // "Play"
    show();
}

void MediaPlayer::togglePause() {
    if (!player_ || file_.isEmpty()) return;
    if (player_->playbackState() == QMediaPlayer::PlayingState)
        player_->pause();
    else
        player_->play();
}

void MediaPlayer::stop() {
    if (player_ && !file_.isEmpty()) {
        release();
        if (status) status("");
    }
}

bool MediaPlayer::playing() const {
    return player_ && player_->playbackState() == QMediaPlayer::PlayingState;
}

bool MediaPlayer::paused() const {
    return player_ && player_->playbackState() == QMediaPlayer::PausedState;
}

void MediaPlayer::showState() {
    const bool isPlaying = playing();
    playPause_->setIcon(
        style()->standardIcon(isPlaying ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    playPause_->setToolTip(isPlaying ? "Pause" : "Play");
    time_->setText(timeText(player_ ? player_->position() : 0, player_ ? player_->duration() : 0));
}

// "Close": release the file so it can be copied, renamed or deleted.
void MediaPlayer::release() {
    hide();
    if (!player_) return;
    file_.clear();
    player_->stop();
    player_->setSource(QUrl());
}

}  // namespace tvk::ui
