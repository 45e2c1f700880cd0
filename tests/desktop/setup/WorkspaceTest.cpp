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

void writeFile(const QString& name, const QByteArray& content) {
    ASSERT_TRUE(QDir().mkpath(QFileInfo(name).path()));
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

TEST(ProductSite, FindsPages) {
    const QTemporaryDir folder;
    const auto first = folder.filePath(QStringLiteral("first copy #1"));
    const auto second = folder.filePath(QStringLiteral("second"));
    writeFile(first + QStringLiteral("/en/doc/index.html"), "");
    writeFile(second + QStringLiteral("/en/doc/index.html"), "");
    writeFile(second + QStringLiteral("/en/setup/index.html"), "");
    ASSERT_TRUE(QDir().mkpath(first + QStringLiteral("/en/setup/index.html"))); // no page, a folder
    const auto file = [&](const QString& name) { return QStringLiteral("file://") + folder.filePath(name); };

    struct Row {
        const char* name;
        const char* host;
        QStringList copies;
        const char* path;
        QString address;
    };
    const std::vector<Row> rows = {
        {"the host goes first",
         "www.example.org",
         {second},
         "/en/doc/",
         QStringLiteral("http://www.example.org/en/doc/")},
        {"a host with a port",
         "localhost:8080",
         {},
         "/en/doc/",
         QStringLiteral("http://localhost:8080/en/doc/")},
        {"the first copy",
         "",
         {first, second},
         "/en/doc/",
         file(QStringLiteral("first%20copy%20%231/en/doc/index.html"))},
        {"the next copy",
         "",
         {first, second},
         "/en/setup",
         file(QStringLiteral("second/en/setup/index.html"))},
        {"a page that no copy has", "", {first, second}, "/en/none/", QString()},
        {"no copy at all", "", {}, "/en/doc/", QString()},
    };
    for (const auto& row : rows) {
        const ProductSite site{.host = QString::fromLatin1(row.host), .copies = row.copies};
        EXPECT_EQ(site.page(QString::fromLatin1(row.path)).toEncoded().toStdString(),
                  row.address.toStdString())
            << row.name;
    }
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
    const auto read = [](const QString& name) {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return QString::fromUtf8(file.readAll());
    };
    const QRegularExpression reference(QStringLiteral("(?:href|src)=\"([^\"#]*)(?:#([^\"]*))?\""));
    int links = 0;
    for (QDirIterator pages(QStringLiteral(SITE_FOLDER), {QStringLiteral("*.html")}, QDir::Files,
                            QDirIterator::Subdirectories);
         pages.hasNext();) {
        const QFileInfo page(pages.next());
        for (const auto& match : reference.globalMatch(read(page.filePath()))) {
            const auto file = match.captured(1), anchor = match.captured(2);
            const auto target = file.isEmpty() ? page.filePath() : page.dir().filePath(file);
            EXPECT_TRUE(QUrl(file).isRelative()) << file.toStdString();
            const auto text = read(target);
            EXPECT_TRUE(anchor.isEmpty() || text.contains(QStringLiteral("id=\"%1\"").arg(anchor)))
                << page.filePath().toStdString() << ": " << match.captured().toStdString();
            ++links;
        }
    }
    EXPECT_GE(links, 20);
}

TEST(DesktopWorkspace, OpensWhatIsThere) {
    const QTemporaryDir folder;
    const auto opener = folder.filePath(QStringLiteral("xdg-open"));
    writeFile(opener, "#!/bin/sh\necho \"$@\" >>\"${0%/*}/opened\"\n");
    QFile::setPermissions(opener, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const auto path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder.path()) + ':' + path);
    RecordedLog log;
    DesktopWorkspace workspace(log, {.host = {}, .copies = {folder.path()}});
    QFile opened(folder.filePath(QStringLiteral("opened"))); // what the desktop's opener notes down
    DesktopWorkspace online(log, {.host = QStringLiteral("www.example.org"), .copies = {}});

    workspace.openWebPage("/en/doc/");
    EXPECT_EQ(log.lines.size(), 1U);
    workspace.launchApplication("/no/such/Application.app");
    EXPECT_EQ(log.lines.size(), 2U);

    const auto page = folder.filePath(QStringLiteral("en/doc/index.html"));
    writeFile(page, "");
    struct Row {
        const char* name;
        std::function<void()> open;
        QString address;
    };
    const std::vector<Row> rows = {
        {"a page", [&] { workspace.openWebPage("/en/doc/"); }, QStringLiteral("file://") + page},
        {"a page on the web", [&] { online.openWebPage("/en/doc/"); },
         QStringLiteral("http://www.example.org/en/doc/")},
        {"an application", [&] { workspace.launchApplication(folder.path().toStdString()); },
         QStringLiteral("file://") + folder.path()},
    };
    for (const auto& row : rows) {
        row.open();
        EXPECT_TRUE(waitUntil([&] { return opened.size() > 0; })) << row.name;
        ASSERT_TRUE(opened.open(QIODevice::ReadOnly));
        EXPECT_EQ(opened.readAll().trimmed().toStdString(), row.address.toStdString()) << row.name;
        opened.close();
        opened.remove();
    }
    EXPECT_EQ(log.lines.size(), 2U);
    qputenv("PATH", path);
}

} // namespace
} // namespace orvello
