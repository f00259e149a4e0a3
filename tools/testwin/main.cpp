// testwin [--title T] [--size WxH] [--min-size WxH]: a plain window for the desktop tests. Every key
// it receives is printed on standard output as "key <text> <qt key> <modifiers>", every click as
// "click <x> <y>".
#include <QApplication>
#include <QCommandLineParser>
#include <QKeyEvent>
#include <QWidget>
#include <cstdio>

namespace {

QSize parseSize(const QString& text, QSize fallback) {
    const auto parts = text.split('x');
    if (parts.size() != 2)
        return fallback;
    return {parts[0].toInt(), parts[1].toInt()};
}

class TestWindow : public QWidget {
protected:
    void keyPressEvent(QKeyEvent* e) override {
        std::printf("key %s %d %d\n", e->text().toUtf8().constData(), e->key(), int(e->modifiers()));
        std::fflush(stdout);
    }
    void mousePressEvent(QMouseEvent* e) override {
        std::printf("click %d %d\n", int(e->position().x()), int(e->position().y()));
        std::fflush(stdout);
    }
};

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({{"title", "window title", "title", "testwin"},
                       {"size", "initial size WxH", "size", "400x300"},
                       {"min-size", "minimum size WxH", "min", ""}});
    parser.process(app);
    TestWindow w;
    w.setWindowTitle(parser.value("title"));
    w.resize(parseSize(parser.value("size"), {400, 300}));
    if (parser.isSet("min-size"))
        w.setMinimumSize(parseSize(parser.value("min-size"), {0, 0}));
    w.show();
    return app.exec();
}
