#include <QApplication>
#include <QLabel>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QLabel label("Tavrin File Manager");
    label.show();
    return app.exec();
}
