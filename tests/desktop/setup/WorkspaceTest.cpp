#include "platform/desktop/DesktopWorkspace.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/RecordedLog.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace orvello {
namespace {

QString read(const QString& name) {
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return QString::fromUtf8(file.readAll());
}

void writeFile(const QString& name, const QByteArray& content) {
    ASSERT_TRUE(QDir().mkpath(QFileInfo(name).path()));
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST(ProductSite, OfABuildHasThePagesThatTheProgramOpens) {
    auto site = ProductSite::ofProgram(QStringLiteral(BUILD_FOLDER));
    site.host.clear();
    for (const char* path : {"/Orvello/en/", "/Orvello/en/doc/", "/Orvello/en/instructions"}) {
        const auto page = QFileInfo(site.page(QString::fromLatin1(path)).toLocalFile()).canonicalFilePath();
        EXPECT_TRUE(page.startsWith(QStringLiteral(SITE_FOLDER "/Orvello/en/"))) << path;
    }
}

TEST(ProductSite, HasNoDeadLinksAndNeedsNothingFromOutside) {
    const QRegularExpression reference(QStringLiteral("(?:href|src)=\"([^\"#]*)(?:#([^\"]*))?\""));
    int links = 0;
    for (QDirIterator pages(QStringLiteral(SITE_FOLDER), {QStringLiteral("*.html")}, QDir::Files,
                            QDirIterator::Subdirectories);
         pages.hasNext();) {
        const QFileInfo page(pages.next());
        for (const auto& match : reference.globalMatch(read(page.filePath()))) {
            const auto file = match.captured(1), anchor = match.captured(2);
            EXPECT_TRUE(QUrl(file).isRelative()) << file.toStdString();
            const auto text = read(file.isEmpty() ? page.filePath() : page.dir().filePath(file));
            EXPECT_TRUE(anchor.isEmpty() || text.contains(QStringLiteral("id=\"%1\"").arg(anchor)))
                << page.filePath().toStdString() << ": " << match.captured().toStdString();
            ++links;
        }
    }
    EXPECT_GE(links, 20);
}

TEST(DesktopWorkspace, OpensWhatIsThere) {
    const QTemporaryDir folder;
    const auto opened = folder.filePath(QStringLiteral("opened")); // what the desktop's opener notes down
    writeFile(folder.filePath(QStringLiteral("xdg-open")),
              "#!/bin/sh\necho \"$@\" >\"${0%/*}/new\" && mv \"${0%/*}/new\" \"${0%/*}/opened\"\n");
    qputenv("PATH", QFile::encodeName(folder.path()) + ':' + qgetenv("PATH"));
    const auto first = folder.filePath(QStringLiteral("first copy #1"));
    const auto second = folder.filePath(QStringLiteral("second"));
    writeFile(first + QStringLiteral("/en/doc/index.html"), "");
    writeFile(second + QStringLiteral("/en/doc/index.html"), "");
    writeFile(second + QStringLiteral("/en/setup/index.html"), "");
    ASSERT_TRUE(QDir().mkpath(first + QStringLiteral("/en/setup/index.html"))); // no page, a folder

    RecordedLog log;
    DesktopWorkspace online(log, {.host = QStringLiteral("localhost:8080"), .copies = {second}});
    DesktopWorkspace offline(log, {.host = {}, .copies = {first, second}});
    const auto here = "file://" + folder.path().toStdString();
    struct Row {
        const char* name;
        std::function<void()> open;
        std::string address; ///< empty where nothing is opened and the log tells so
    };
    const std::vector<Row> rows = {
        {"the host goes first", [&] { online.openWebPage("/en/doc/"); }, "http://localhost:8080/en/doc/"},
        {"the first copy", [&] { offline.openWebPage("/en/doc/"); },
         here + "/first%20copy%20%231/en/doc/index.html"},
        {"the next copy", [&] { offline.openWebPage("/en/setup"); }, here + "/second/en/setup/index.html"},
        {"a page that no copy has", [&] { offline.openWebPage("/en/none/"); }, ""},
        {"an application", [&] { offline.launchApplication(folder.path().toStdString()); }, here},
        {"a missing application", [&] { offline.launchApplication("/no/such/Application.app"); }, ""},
    };
    for (const auto& row : rows) {
        const auto logged = log.lines.size();
        row.open();
        EXPECT_EQ(log.lines.size() - logged, row.address.empty() ? 1U : 0U) << row.name;
        if (row.address.empty())
            continue;
        ASSERT_TRUE(waitUntil([&] { return QFile::exists(opened); })) << row.name;
        EXPECT_EQ(read(opened).trimmed().toStdString(), row.address) << row.name;
        QFile::remove(opened);
    }
}

} // namespace
} // namespace orvello
