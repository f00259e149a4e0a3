// testwin [--title T] [--size WxH] [--min-size WxH] [--grab-super-alt KEY] [--copy TYPE=FILE ...]
// [--copy-burst N [--burst-gap-ms MS]] [--wm-class INSTANCE,CLASS]: a plain window for the desktop tests.
// Every key it receives is printed on standard output as "key <qt key> <modifiers> <text>", every click as
// "click <x> <y>"; a Ctrl+V or Ctrl+Shift+V reads the clipboard's text and prints "pasted <chord> <text as
// base64>".
// --grab-super-alt plays another program that owns a global shortcut: it grabs Super+Alt+KEY (a keysym name
// such as "f") on the root window.
// --copy plays a program that copies: it puts one clipboard content with each TYPE holding the bytes of
// FILE ("text/plain=-" reads standard input) and prints "copied"; it owns the clipboard until it exits.
// --copy-burst copies "burst 1" ... "burst N", one copy every MS milliseconds, and prints "burst done".
// --hold-clipboard-silently takes the clipboard and never answers a request for it, then prints "holding".
#include <QApplication>
#include <QClipboard>
#include <QCommandLineParser>
#include <QDateTime>
#include <QFile>
#include <QKeyEvent>
#include <QMimeData>
#include <QProcess>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
#include <xkbcommon/xkbcommon.h>

namespace {

QSize parseSize(const QString& text, QSize fallback) {
    const auto parts = text.split('x');
    if (parts.size() != 2)
        return fallback;
    return {parts[0].toInt(), parts[1].toInt()};
}

bool grabSuperAlt(const QString& keyName) {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const xkb_keysym_t keysym = xkb_keysym_from_name(keyName.toLatin1().constData(), XKB_KEYSYM_NO_FLAGS);
    xcb_key_symbols_t* symbols = xcb_key_symbols_alloc(c);
    xcb_keycode_t* codes = xcb_key_symbols_get_keycode(symbols, keysym);
    bool ok = codes && *codes != XCB_NO_SYMBOL;
    for (auto* k = codes; ok && *k != XCB_NO_SYMBOL; ++k)
        for (int lock : {0, int(XCB_MOD_MASK_LOCK), int(XCB_MOD_MASK_2), XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2})
            xcb_grab_key(c, 0, root, XCB_MOD_MASK_4 | XCB_MOD_MASK_1 | lock, *k, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC);
    std::free(codes);
    xcb_key_symbols_free(symbols);
    xcb_flush(c);
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); // the grabs are in place
    return ok; // the connection stays open for the life of the process, and the grabs with it
}

void copy(const QStringList& entries) {
    auto* data = new QMimeData();
    for (const QString& entry : entries) {
        const QString type = entry.section('=', 0, 0);
        const QString path = entry.section('=', 1);
        QFile file;
        const bool opened = path == "-" ? file.open(stdin, QIODevice::ReadOnly)
                                        : (file.setFileName(path), file.open(QIODevice::ReadOnly));
        if (opened)
            data->setData(type, file.readAll());
    }
    QGuiApplication::clipboard()->setMimeData(data);
    std::printf("copied\n");
    std::fflush(stdout);
}

void burst(int count, int gapMs) {
    auto* timer = new QTimer(qApp);
    timer->setInterval(gapMs);
    QObject::connect(timer, &QTimer::timeout, [timer, count, n = 0]() mutable {
        QGuiApplication::clipboard()->setText(QString("burst %1").arg(++n));
        if (n == count) {
            timer->stop();
            std::printf("burst done\n");
            std::fflush(stdout);
        }
    });
    timer->start();
}

// Plays a broken program: it takes the clipboard and never answers anyone who asks for its content.
bool holdClipboardSilently() {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    auto* atom = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, 9, "CLIPBOARD"), nullptr);
    const bool ok = atom != nullptr;
    if (ok)
        xcb_set_selection_owner(c, window, atom->atom, XCB_CURRENT_TIME);
    std::free(atom);
    xcb_flush(c);
    return ok; // the connection stays open, unread, for the life of the process
}

class TestWindow : public QWidget {
protected:
    void keyPressEvent(QKeyEvent* e) override {
        const QString text = e->text().size() == 1 && e->text()[0].isPrint() ? e->text() : QString();
        std::printf("key %d %d %s\n", e->key(), int(e->modifiers()), text.toUtf8().constData());
        // A paste chord reads the clipboard as an editor would, and says what it got.
        if (e->key() == Qt::Key_V && (e->modifiers() & Qt::ControlModifier)) {
            const QString pasted = QGuiApplication::clipboard()->text();
            std::printf("pasted %s %s %lld\n",
                        (e->modifiers() & Qt::ShiftModifier) ? "ctrl+shift+v" : "ctrl+v",
                        pasted.toUtf8().toBase64().constData(), QDateTime::currentMSecsSinceEpoch());
        }
        std::fflush(stdout);
    }
    void mousePressEvent(QMouseEvent* e) override {
        std::printf("click %d %d\n", int(e->position().x()), int(e->position().y()));
        std::fflush(stdout);
    }
};

} // namespace

// The toolkit names the window's class after the resource name and the application name, fixed
// before the application object exists: --wm-class is read ahead of everything else.
void useWmClass(int argc, char** argv) {
    for (int i = 1; i + 1 < argc; ++i)
        if (QByteArray(argv[i]) == "--wm-class") {
            const QByteArray names = argv[i + 1];
            qputenv("RESOURCE_NAME", names.split(',').value(0));
            QCoreApplication::setApplicationName(QString::fromUtf8(names.split(',').value(1)));
        }
}

int main(int argc, char** argv) {
    useWmClass(argc, argv);
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addOptions(
        {{"title", "window title", "title", "testwin"},
         {"size", "initial size WxH", "size", "400x300"},
         {"min-size", "minimum size WxH", "min", ""},
         {"grab-super-alt", "grab Super+Alt+KEY on the root window", "key", ""},
         {"copy", "put TYPE=FILE on the clipboard", "entry"},
         {"copy-burst", "copy N texts in a row", "n", "0"},
         {"burst-gap-ms", "time between two copies of a burst", "ms", "10"},
         {"wm-class", "the window's WM_CLASS as INSTANCE,CLASS", "names", ""},
         {"hold-clipboard-silently", "own the clipboard and never answer"},
         {"child", "start PROGRAM as a child process (a helper of this application)", "program"}});
    parser.process(app);
    if (parser.isSet("grab-super-alt") && grabSuperAlt(parser.value("grab-super-alt"))) {
        std::printf("grabbed\n");
        std::fflush(stdout);
    }
    TestWindow w;
    w.setWindowTitle(parser.value("title"));
    w.resize(parseSize(parser.value("size"), {400, 300}));
    if (parser.isSet("min-size"))
        w.setMinimumSize(parseSize(parser.value("min-size"), {0, 0}));
    w.show();
    // Copies are made once the window is up, as a person would make them: from a window that is shown.
    constexpr int kShownMs = 300;
    if (parser.isSet("copy"))
        QTimer::singleShot(kShownMs, [&parser] { copy(parser.values("copy")); });
    if (parser.isSet("hold-clipboard-silently"))
        QTimer::singleShot(kShownMs, [] {
            if (holdClipboardSilently()) {
                std::printf("holding\n");
                std::fflush(stdout);
            }
        });
    if (const int n = parser.value("copy-burst").toInt(); n > 0)
        QTimer::singleShot(kShownMs, [n, &parser] { burst(n, parser.value("burst-gap-ms").toInt()); });
    // A helper process of this application, as browsers and editors start them; it ends with us.
    QProcess child;
    if (parser.isSet("child")) {
        QStringList words = parser.value("child").split(' ', Qt::SkipEmptyParts);
        child.start(words.takeFirst(), words);
        if (child.waitForStarted()) {
            std::printf("child %lld\n", static_cast<long long>(child.processId()));
            std::fflush(stdout);
        }
    }
    const int code = app.exec();
    child.kill();
    child.waitForFinished();
    return code;
}
