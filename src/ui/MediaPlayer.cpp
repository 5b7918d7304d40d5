#include "ui/MediaPlayer.h"

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QUrl>

namespace tvk::ui {

MediaPlayer::MediaPlayer(QObject* parent) : QObject(parent) {
    setObjectName("mmcMain");
}

MediaPlayer::~MediaPlayer() = default;

// Made on first use: the media framework is slow to start and not every run plays.
QMediaPlayer* MediaPlayer::player() {
    if (player_) return player_;
    player_ = new QMediaPlayer(this);
    audio_ = new QAudioOutput(this);
    player_->setAudioOutput(audio_);
    // "Playing" only once the framework has the media; a file it cannot read ends in an
    // error instead.
    connect(player_, &QMediaPlayer::mediaStatusChanged, this, [this](QMediaPlayer::MediaStatus s) {
        if ((s == QMediaPlayer::LoadedMedia || s == QMediaPlayer::BufferedMedia) &&
            player_->playbackState() == QMediaPlayer::PlayingState && status && !file_.isEmpty())
            status("Playing " + name_);
        if (s == QMediaPlayer::EndOfMedia) {
            close();
            if (status) status("");
        }
    });
    connect(player_, &QMediaPlayer::errorOccurred, this,
            [this](QMediaPlayer::Error, const QString& why) {
                const QString file = file_, name = name_;
                close();
                if (file.endsWith(".mid", Qt::CaseInsensitive) && fallback && fallback(file)) {
                    if (status) status("Playing " + name + " in the desktop's player");
                    return;
                }
                if (status) status("Cannot play " + name + ": " + why);
            });
    return player_;
}

void MediaPlayer::play(const QString& file, const QString& name) {
    if (status) status("Just a moment...");
    close();
    file_ = file;
    name_ = name;
    auto* p = player();
    p->setSource(QUrl::fromLocalFile(file));  // "Open"
    p->play();                                // "Play"
}

void MediaPlayer::stop() {
    if (player_ && player_->playbackState() != QMediaPlayer::StoppedState) {
        close();
        if (status) status("");
    }
}

bool MediaPlayer::playing() const {
    return player_ && player_->playbackState() == QMediaPlayer::PlayingState;
}

// "Close": release the file so it can be copied, renamed or deleted.
void MediaPlayer::close() {
    if (!player_) return;
    player_->stop();
    player_->setSource(QUrl());
    file_.clear();
}

}  // namespace tvk::ui
