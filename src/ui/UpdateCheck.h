#pragma once
// bzrMain: fetches the version page in the background. Only a page that arrived and
// whose title reads like a version is reported; an unreachable server, an error page or
// a page of something else says nothing, as the user expects of a background check.

#include <QNetworkAccessManager>
#include <QObject>
#include <QUrl>

namespace tvk::ui {

class UpdateCheck : public QObject {
    Q_OBJECT
  public:
    explicit UpdateCheck(QObject* parent = nullptr);

    // TVK_UPDATE_URL when set, else the placeholder address of the version file.
    static QUrl configuredUrl();
    void start(const QUrl& url);
    bool running() const { return running_; }

    // The trimmed text of the document's <title>; empty when there is none.
    static QString titleOf(const QByteArray& html);
    static bool looksLikeVersion(const QString& title);

  signals:
    void pageLoaded(const QString& location, const QString& title);
    void finished();  // after every attempt, reported or not

  private:
    QNetworkAccessManager network_;
    bool running_ = false;
};

}  // namespace tvk::ui
