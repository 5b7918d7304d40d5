#include "ui/UpdateCheck.h"

#include <QNetworkReply>
#include <QRegularExpression>

namespace tvk::ui {

UpdateCheck::UpdateCheck(QObject* parent) : QObject(parent) {
    setObjectName("bzrMain");
}

QUrl UpdateCheck::configuredUrl() {
    const QByteArray fromEnv = qgetenv("TVK_UPDATE_URL");
    return QUrl(fromEnv.isEmpty() ? QStringLiteral("http://updates.invalid/TVK/TVK.ver")
                                  : QString::fromUtf8(fromEnv));
}

QString UpdateCheck::titleOf(const QByteArray& html) {
    static const QRegularExpression title(
        QStringLiteral("<title[^>]*>(.*?)</title>"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const auto match = title.match(QString::fromUtf8(html));
    return match.hasMatch() ? match.captured(1).trimmed() : QString();
}

bool UpdateCheck::looksLikeVersion(const QString& title) {
    static const QRegularExpression version(QStringLiteral("^\\d+(\\.\\d+)*$"));
    return version.match(title).hasMatch();
}

void UpdateCheck::start(const QUrl& url) {
    QNetworkRequest request(url);
    request.setTransferTimeout(15000);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    running_ = true;
    QNetworkReply* reply = network_.get(request);
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        reply->deleteLater();
        running_ = false;
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (reply->error() == QNetworkReply::NoError && (status == 0 || status == 200)) {
            const QString title = titleOf(reply->readAll());
            if (title.isEmpty() || looksLikeVersion(title))
                emit pageLoaded(reply->url().toString(), title);
        }
        emit finished();
    });
}

}  // namespace tvk::ui
