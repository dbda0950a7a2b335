#pragma once

// The program itself, for tests: a process of its own, without a display, in a folder and with a home of its
// own.

#include <filesystem>
#include <string>
#include <unistd.h>

#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include "castfile.h"
#include "common/files.h"
#include "temporarydirectory.h"

namespace testing_support {

inline QString fromUtf8(const std::string& text)
{
    return QString::fromStdString(text);
}

struct RUN {
    int code = -1; // -1: it didn't end by itself
    std::string error, output;
};

class Program : public testing::Test {
protected:
    Program()
    {
        std::filesystem::create_directories(folder.file("home"));
        std::filesystem::create_directories(folder.file("tmp"));
        writeText(file("cast.txt"), castText(5, 8));
        environment = QProcessEnvironment::systemEnvironment();
        for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "NVQMPHOME",
                                       "NVQMPTEMP", "NVQMPUSER", "NVQMPHOST", "XDG_RUNTIME_DIR"})
            environment.remove(QString::fromLatin1(name));
        environment.insert(QStringLiteral("HOME"), fromUtf8(folder.file("home")));
        environment.insert(QStringLiteral("TMPDIR"), fromUtf8(folder.file("tmp")));
    }

    std::string file(const std::string& name) const { return folder.file(name); }
    std::string read(const std::string& name) const { return common::readFile(file(name)).value_or("none"); }
    bool exists(const std::string& name) const { return common::fileExists(file(name)); }

    RUN start(const std::string& program, const QStringList& arguments) const
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(fromUtf8(folder.path()));
        process.start(fromUtf8(program), arguments);
        RUN run;
        if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit)
            run.code = process.exitCode();
        process.kill();
        process.waitForFinished(1000);
        run.error = process.readAllStandardError().toStdString();
        run.output = process.readAllStandardOutput().toStdString();
        return run;
    }
    RUN run(const QStringList& arguments) const { return start(NVQ_BUILD_DIR "/bin/nvqmp", arguments); }
    // Runs a command file of these lines, then quits.
    RUN commands(const std::string& lines) const
    {
        writeText(file("run.cmd"), lines);
        return run({QStringLiteral("-x"), QStringLiteral("run.cmd"), QStringLiteral("-q")});
    }
    // The same as a user who may not write everywhere.
    RUN commandsWithoutRights(const std::string& lines) const
    {
        if (::geteuid() != 0) return commands(lines);
        writeText(file("run.cmd"), lines);
        return start("setpriv", {QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                                 QStringLiteral("--clear-groups"), QStringLiteral(NVQ_BUILD_DIR "/bin/nvqmp"),
                                 QStringLiteral("-x"), QStringLiteral("run.cmd"), QStringLiteral("-q")});
    }
    void letOthersWrite() const
    {
        std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
        for (const char* const name : {"home", "tmp"})
            std::filesystem::permissions(file(name), std::filesystem::perms::all);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(file("home")))
            std::filesystem::permissions(entry.path(), std::filesystem::perms::all);
    }
    int temporaryFiles() const
    {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(file("tmp")))
            count += entry.path().filename().string().starts_with("NVQ") ? 1 : 0;
        return count;
    }
    void makeCollection() const
    {
        const RUN made = commands("open_collection " + file("cast.txt") + "\n");
        ASSERT_EQ(made.code, 0) << made.error;
    }
    std::string collectionBytes() const { return read("cast.var") + read("cast.hob") + read("cast.dob"); }

    const RTemporaryDirectory folder;
    QProcessEnvironment environment;
};

} // namespace testing_support
