// Renders the user's manual, written in Markdown beside its screenshots, to a PDF.
//
//   render-manual MANUAL.md OUTPUT.pdf

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPageSize>
#include <QPdfWriter>
#include <QRect>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFormat>
#include <QUrl>
#include <algorithm>
#include <iostream>
#include <vector>

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc != 3) {
        std::cerr << "usage: render-manual MANUAL.md OUTPUT.pdf\n";
        return 2;
    }
    QFile in(QString::fromLocal8Bit(argv[1]));
    if (!in.open(QIODevice::ReadOnly)) {
        std::cerr << "render-manual: cannot read " << argv[1] << "\n";
        return 1;
    }
    QTextDocument doc;
    // Images are named relative to the manual.
    doc.setBaseUrl(QUrl::fromLocalFile(QFileInfo(in.fileName()).absolutePath() + "/"));
    doc.setDefaultStyleSheet("h1 { color: #1b3a5c; } h2 { color: #1b3a5c; }");
    QFont body = doc.defaultFont();
    body.setPointSize(10);
    doc.setDefaultFont(body);
    doc.setMarkdown(QString::fromUtf8(in.readAll()));

    QPdfWriter pdf(QString::fromLocal8Bit(argv[2]));
    pdf.setTitle("Tavrin File Manager - User's Manual");
    pdf.setCreator("Tavrin File Manager");
    pdf.setPageSize(QPageSize(QPageSize::A4));
    pdf.setPageMargins(QMarginsF(18, 18, 18, 18), QPageLayout::Millimeter);
    pdf.setResolution(150);
    // The document is laid out in the screen's 96 dots an inch and scaled to the page;
    // screenshots wider than the page are scaled down to its width.
    const QRect page = pdf.pageLayout().paintRectPixels(96);
    const qreal pageWidth = page.width();
    doc.setPageSize(QSizeF(page.width(), page.height()));
    struct Picture {
        int position, length;
        QTextImageFormat format;
    };
    std::vector<Picture> pictures;
    for (QTextBlock block = doc.begin(); block.isValid(); block = block.next())
        for (auto it = block.begin(); !it.atEnd(); ++it)
            if (const QTextImageFormat image = it.fragment().charFormat().toImageFormat();
                image.isValid())
                pictures.push_back({it.fragment().position(), it.fragment().length(), image});
    for (auto& p : pictures) {
        const QImage picture =
            doc.resource(QTextDocument::ImageResource, QUrl(p.format.name())).value<QImage>();
        if (picture.isNull()) {
            std::cerr << "render-manual: missing picture " << p.format.name().toStdString() << "\n";
            return 1;
        }
        const qreal width = std::min<qreal>(pageWidth * 0.95, picture.width());
        p.format.setWidth(width);
        p.format.setHeight(picture.height() * width / picture.width());
        QTextCursor cursor(&doc);
        cursor.setPosition(p.position);
        cursor.setPosition(p.position + p.length, QTextCursor::KeepAnchor);
        cursor.setCharFormat(p.format);
    }
    doc.print(&pdf);
    return 0;
}
