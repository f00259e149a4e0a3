// A process folder laid out as /proc, in a temporary folder, for the readers of platform/linux.
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

struct FakeProc {
    QTemporaryDir dir;

    std::string root() const { return dir.path().toStdString(); }

    void write(const QString& relative, const QByteArray& text) const {
        const QString path = dir.path() + '/' + relative;
        QDir().mkpath(path.section('/', 0, -2));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
    }
    void link(const QString& relative, const QByteArray& target) const {
        const QString path = dir.path() + '/' + relative;
        QDir().mkpath(path.section('/', 0, -2));
        QFile::remove(path);
        ASSERT_EQ(::symlink(target.constData(), QFile::encodeName(path).constData()), 0);
    }
    void remove(qint64 pid) const { QDir(dir.path() + '/' + QString::number(pid)).removeRecursively(); }

    void bootedAt(qint64 epochSeconds) const {
        write("stat",
              "cpu  1 2 3 4 5 6 7 8 0 0\nbtime " + QByteArray::number(epochSeconds) + "\nprocesses 9\n");
    }
    // The files of one process: stat with these fields, statm with this many resident pages.
    void process(qint64 pid, const QByteArray& name, qint64 parent, quint64 usedTicks, quint64 startTicks,
                 qint64 residentPages = 100) const {
        const QString folder = QString::number(pid) + '/';
        write(folder + "stat", QByteArray::number(pid) + " (" + name + ") S " + QByteArray::number(parent) +
                                   " 1 1 0 -1 4194304 10 0 0 0 " + QByteArray::number(usedTicks) +
                                   " 0 0 0 20 0 1 0 " + QByteArray::number(startTicks) + " 1000 " +
                                   QByteArray::number(residentPages) + " 0 0 0\n");
        write(folder + "statm", "5000 " + QByteArray::number(residentPages) + " 300 10 0 400 0\n");
    }
};
