// Updates as they happen: an update server of the test's own on 127.0.0.1 (a small Python program)
// offers a build made here, a shell script named velmora that leaves a mark when it starts. The
// updater installs it into a temporary installation folder and starts it, and leaves the folder
// byte for byte as it was when the download is wrong or cut; the agent reports failed checks and
// runs on.
#include "AgentUnderTest.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <map>

namespace {

using Json = AgentUnderTest::Json;

// GET /api/... answers as the file "mode" says: "answer" (the file answer.json), "500", or "loop" (a
// redirect to itself). GET /files/NAME serves NAME; GET /cut/NAME announces all of NAME and sends half.
constexpr auto kServer = R"PY(
import http.server, os, sys
root = sys.argv[1]
def read(name, default=b""):
    path = os.path.join(root, name)
    return open(path, "rb").read() if os.path.exists(path) else default
class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    def log_message(self, *args):
        pass
    def send(self, code, body=b"", headers=()):
        self.send_response(code)
        for name, value in headers:
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)
    def do_GET(self):
        with open(os.path.join(root, "requests.log"), "a") as log:
            log.write(self.path + "\n")
        if self.path.startswith("/api/"):
            mode = read("mode", b"answer").strip()
            if mode == b"500":
                return self.send(500, b"oops")
            if mode == b"loop":
                return self.send(302, b"", [("Location", self.path)])
            return self.send(200, read("answer.json"), [("Content-Type", "application/json")])
        kind, _, name = self.path[1:].partition("/")
        data = read(os.path.basename(name), None)
        if data is None or kind not in ("files", "cut"):
            return self.send(404)
        if kind == "files":
            return self.send(200, data)
        self.send_response(200)
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        self.wfile.write(data[: len(data) // 2])
        self.wfile.flush()
        self.close_connection = True
class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, request, client_address):
        pass  # a client that hangs up (the agent quitting) is no news
server = Server(("127.0.0.1", 0), Handler)
with open(os.path.join(root, "port.part"), "w") as f:
    f.write(str(server.server_address[1]))
os.rename(os.path.join(root, "port.part"), os.path.join(root, "port"))
server.serve_forever()
)PY";

const QString kMarker = "share/velmora/self-updating";

bool writeFile(const QString& path, const QByteArray& bytes, bool executable = false) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return false;
    file.close();
    return !executable || file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeGroup);
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Every file and folder under root with its contents and permissions.
std::map<QString, std::pair<QByteArray, int>> snapshot(const QString& root) {
    std::map<QString, std::pair<QByteArray, int>> entries;
    QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QFileInfo info(path);
        entries[QDir(root).relativeFilePath(path)] = {info.isDir() ? QByteArray("<dir>") : readFile(path),
                                                      int(info.permissions())};
    }
    return entries;
}

class UpdateServer {
public:
    UpdateServer() {
        writeFile(m_root.filePath("server.py"), kServer);
        m_process.setProcessChannelMode(QProcess::ForwardedChannels);
        m_process.start("/usr/bin/python3", {m_root.filePath("server.py"), m_root.path()});
        waitUntil([this] { return QFileInfo::exists(m_root.filePath("port")); }, 5000);
        m_port = readFile(m_root.filePath("port")).toInt();
    }
    ~UpdateServer() {
        m_process.kill();
        m_process.waitForFinished(3000);
    }
    bool isReady() const { return m_port > 0; }
    QString base() const { return QString("http://127.0.0.1:%1").arg(m_port); }
    QString path(const QString& name) const { return m_root.filePath(name); }
    void setMode(const QByteArray& mode) { writeFile(path("mode"), mode); }
    void offer(const QString& url, const QByteArray& sha256) {
        writeFile(path("answer.json"),
                  Json{{"url", url.toStdString()}, {"sha256", sha256.toStdString()}, {"version", "0.2.0"}}
                      .dump()
                      .c_str());
    }
    QStringList requests() const {
        return QString::fromUtf8(readFile(path("requests.log"))).split('\n', Qt::SkipEmptyParts);
    }

private:
    QTemporaryDir m_root;
    QProcess m_process;
    int m_port = 0;
};

// The new build, a .tar.gz of an installation folder: its velmora marks the folder it runs from.
QByteArray makeBuild(const QString& archive, const QString& workDir) {
    const QString tree = workDir + "/tree";
    writeFile(tree + "/bin/velmora", "#!/bin/sh\necho \"$@\" > \"$(dirname \"$0\")/../started\"\n", true);
    writeFile(tree + "/" + kMarker, "");
    writeFile(tree + "/VERSION", "0.2.0\n");
    QProcess tar;
    tar.start("tar", {"-czf", archive, "-C", tree, "."});
    if (!tar.waitForFinished(10000) || tar.exitCode() != 0)
        return {};
    return QCryptographicHash::hash(readFile(archive), QCryptographicHash::Sha256).toHex();
}

QString updaterBinary() {
    return QFileInfo(VELMORA_BINARY).absolutePath() + "/velmora-updater";
}

class Updater : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(server.isReady());
        digest = makeBuild(server.path("build.tar.gz"), work.path());
        ASSERT_EQ(digest.size(), 64);
        ASSERT_TRUE(writeFile(installDir() + "/bin/velmora", "#!/bin/sh\nexit 0\n", true));
        ASSERT_TRUE(writeFile(installDir() + "/" + kMarker, ""));
        ASSERT_TRUE(writeFile(installDir() + "/VERSION", "0.1.0\n"));
    }
    QString installDir() const { return installs.filePath("velmora"); }
    // Runs the updater on the installation folder; its exit code.
    int update(const QString& url, const QByteArray& sha256) {
        QProcess updater;
        updater.setProcessChannelMode(QProcess::ForwardedChannels);
        updater.start(updaterBinary(),
                      {"--url", url, "--sha256", QString::fromLatin1(sha256), "--install-dir", installDir(),
                       "--relaunch", installDir() + "/bin/velmora"});
        if (!updater.waitForFinished(20000))
            return -1;
        return updater.exitStatus() == QProcess::NormalExit ? updater.exitCode() : -1;
    }
    // Nothing is left beside the installation folder.
    QStringList besideInstallation() const {
        return QDir(installs.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    }

    UpdateServer server;
    QTemporaryDir work;
    QTemporaryDir installs;
    QByteArray digest;
};

TEST_F(Updater, InstallsAVerifiedBuildAndStartsIt) {
    EXPECT_EQ(update(server.base() + "/files/build.tar.gz", digest), 0);
    EXPECT_EQ(readFile(installDir() + "/VERSION"), "0.2.0\n");
    EXPECT_TRUE(waitUntil([&] { return QFileInfo::exists(installDir() + "/started"); }, 5000));
    EXPECT_EQ(besideInstallation(), QStringList{"velmora"});
}

TEST_F(Updater, AWrongDigestOrACutDownloadLeavesTheInstallationAsItWas) {
    const auto before = snapshot(installDir());
    QByteArray wrong = digest;
    wrong[0] = wrong[0] == 'a' ? 'b' : 'a';
    EXPECT_EQ(update(server.base() + "/files/build.tar.gz", wrong), 3);
    EXPECT_EQ(snapshot(installDir()), before);
    EXPECT_EQ(besideInstallation(), QStringList{"velmora"});

    EXPECT_EQ(update(server.base() + "/cut/build.tar.gz", digest), 2);
    EXPECT_EQ(snapshot(installDir()), before);
    EXPECT_EQ(besideInstallation(), QStringList{"velmora"});

    EXPECT_EQ(update(server.base() + "/files/missing.tar.gz", digest), 2);
    EXPECT_EQ(snapshot(installDir()), before);
    EXPECT_FALSE(QFileInfo::exists(installDir() + "/started"));
}

TEST_F(Updater, ReplacesOnlyAnInstallationOfItsOwn) {
    QFile::remove(installDir() + "/" + kMarker);
    const auto before = snapshot(installDir());
    EXPECT_EQ(update(server.base() + "/files/build.tar.gz", digest), 1);
    EXPECT_EQ(snapshot(installDir()), before);
    EXPECT_EQ(update(server.base() + "/files/build.tar.gz", "not-a-digest"), 1);
}

// The agent run from an installation folder of its own, with the updater beside it.
class UpdatingAgent : public Updater {
protected:
    void SetUp() override {
        Updater::SetUp();
        ASSERT_TRUE(desktop.isReady());
        ASSERT_TRUE(desktop.writeWelcomedSettings());
        QFile::remove(installDir() + "/bin/velmora");
        ASSERT_TRUE(QFile::copy(VELMORA_BINARY, installDir() + "/bin/velmora"));
        ASSERT_TRUE(QFile::copy(updaterBinary(), installDir() + "/bin/velmora-updater"));
        qputenv("VELMORA_UPDATE_URL", server.base().toUtf8());
        process = desktop.start(installDir() + "/bin/velmora", {});
        qunsetenv("VELMORA_UPDATE_URL");
        ASSERT_TRUE(waitUntil([&] { return agent.json({"status"}).has_value(); }));
    }
    Json check(const QStringList& more = {}) {
        return agent.json(QStringList{"update", "check"} + more).value_or(Json());
    }

    VirtualDesktop desktop{VirtualDesktop::Options{1024, 768, false}};
    AgentUnderTest agent{desktop};
    QProcess* process = nullptr;
};

TEST_F(UpdatingAgent, AnOfferedBuildReplacesTheRunningAgent) {
    server.offer(server.base() + "/files/build.tar.gz", digest);
    const Json status = agent.status()["updates"];
    EXPECT_EQ(status["installationFolder"], QDir(installDir()).canonicalPath().toStdString());
    EXPECT_EQ(status["server"], server.base().toStdString());

    const Json found = check({"--install"});
    EXPECT_EQ(found["offered"], true) << found.dump();
    EXPECT_EQ(found["handedOver"], true) << found.dump();
    // The updater asks the agent to quit once the build is checked, then puts it in place and starts it.
    EXPECT_TRUE(process->waitForFinished(10000));
    EXPECT_EQ(process->exitStatus(), QProcess::NormalExit);
    EXPECT_TRUE(waitUntil([&] { return QFileInfo::exists(installDir() + "/started"); }, 10000));
    EXPECT_EQ(readFile(installDir() + "/VERSION"), "0.2.0\n");
    EXPECT_TRUE(waitUntil([&] { return besideInstallation() == QStringList{"velmora"}; }, 5000))
        << besideInstallation().join(' ').toStdString();
    ASSERT_FALSE(server.requests().isEmpty());
    EXPECT_TRUE(server.requests().first().startsWith("/api/products/linux/"));
    EXPECT_TRUE(server.requests().first().endsWith("/update?channel=stable"));
}

TEST_F(UpdatingAgent, ABadDigestLeavesTheAgentRunning) {
    QByteArray wrong = digest;
    wrong[0] = wrong[0] == 'a' ? 'b' : 'a';
    server.offer(server.base() + "/files/build.tar.gz", wrong);
    const auto before = snapshot(installDir());
    EXPECT_EQ(check({"--install"})["handedOver"], true);
    const QString log = desktop.dataDir() + "/Velmora/updater.log";
    EXPECT_TRUE(waitUntil([&] { return readFile(log).contains("nothing was changed"); }));
    EXPECT_TRUE(readFile(log).contains("SHA-256")) << readFile(log).constData();
    EXPECT_TRUE(waitUntil([&] { return besideInstallation() == QStringList{"velmora"}; }, 5000));
    EXPECT_EQ(snapshot(installDir()), before);
    EXPECT_EQ(process->state(), QProcess::Running);
    EXPECT_TRUE(agent.json({"status"}).has_value());
}

TEST_F(UpdatingAgent, AServerErrorOrARedirectLoopIsReportedAndTheAgentRunsOn) {
    server.setMode("500");
    Json found = check();
    EXPECT_EQ(found["checked"], false) << found.dump();
    EXPECT_EQ(found["error"], "the server answered 500 Internal Server Error");
    server.setMode("loop");
    found = check({"--install"});
    EXPECT_EQ(found["checked"], false) << found.dump();
    EXPECT_EQ(found["error"], "more than 5 redirects (a redirect loop?)");
    EXPECT_FALSE(found.contains("handedOver"));
    server.setMode("answer");
    writeFile(server.path("answer.json"), "{}");
    found = check();
    EXPECT_EQ(found.dump(), R"({"checked":true,"offered":false,"url":null,"error":null})");
    EXPECT_EQ(agent.status()["updates"]["last"], found);
    EXPECT_EQ(process->state(), QProcess::Running);
}

} // namespace
