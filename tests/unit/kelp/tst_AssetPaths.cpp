// SPDX-License-Identifier: Apache-2.0
// From URLs to local paths: the forms of URLs, what the device tells of its screen and theme, and what is asked of the
// platform's asset selector.

#include "MessageLog.h"
#include "RecordingPlatform.h"
#include "UIToolkitSupportPrivate.h"

#include <QtTest/QtTest>

#include <sys/mman.h>
#include <unistd.h>

using namespace kelp;
using kelp::test::RecordingPlatform;

namespace {

#define ASSETS "/apps/x/app/native/assets"
#define WARNING "warning: UIToolkitSupport: "
#define UNABLE(step) WARNING "Unable to " step " /pps/services/deviceproperties"
#define NO_HOME "warning: could not find appRootDir via HOME path, using current directory"

// In the current directory "/usr", and on a device that tells nothing.
const struct {
    const char *url, *path, *warnings = UNABLE("open"), *home = "/apps/x/data"; // null: not set
} URLS[] = {
    {"asset:///images/a.png", ASSETS "/images/a.png"},
    {"ASSET:a.png", ASSETS "/a.png"},
    {"asset://host/a", ASSETS "/a", "warning: absolutePathFromUrl(): ignoring hostname|" UNABLE("open")},
    {"asset:///b//./../%C3%A4 1.png?q#f", ASSETS "/\xc3\xa4 1.png"},
    {"asset:///../../a.png", "/apps/x/app/a.png"},
    {"asset:a", "/h\xc3\x83\xc2\xa4/app/native/assets/a", UNABLE("open"), "/h\xc3\xa4//x/"}, // Latin-1
    {"asset:a", "/usr/app/native/assets/a", UNABLE("open"), "data"},
    {"asset:a", "/usr/app/native/assets/a", UNABLE("open") "|" NO_HOME, ""},
    {"asset:a", "/usr/app/native/assets/a", UNABLE("open") "|" NO_HOME, nullptr},
    {"a/../b.txt", "/usr/b.txt", ""},
    {"", "/usr", ""},
    {"file:///a/./b.txt", "/a/b.txt", ""},
    {"File:b.txt", "/usr/b.txt", ""},
    {"qrc:///a.png", "", WARNING "Unrecognized scheme"},
};

#define DARK "@d\ndefaultTheme::Dark\n"

// The text of the device's object, and what it tells.
const struct {
    const char *text, *properties, *warnings = "", *chosenTheme = "";
} DEVICES[] = {
    {DARK "screen_res::768X1280\n", "768 1280 Dark"},
    {DARK "screen_res::1x2\n", "1 2 \xc3\xa4", "", "\xc3\xa4"},
    {"", "0 0 ", UNABLE("read")}, // nothing new
    {"@d\nscreen_res\n", "0 0 ", UNABLE("decode")},
    {"@d\nscreen_res::1x2\n", "0 0 ", UNABLE("read resolution and theme from"), "dark"},
    {DARK, "0 0 ", UNABLE("read resolution and theme from")},
    {DARK "screen_res::7x8X9\n", "0 0 ",
     WARNING "read a screen resolution in a non supported format \"7x8x9\""},
    {DARK "screen_res::0x1280\n", "0 0 ", WARNING "invalid resolution \"0x1280\""},
    {DARK "screen_res::768x\\\"\n", "0 0 ", WARNING "invalid resolution \"768x\\\"\""}, // as it stands
};

#define CREATE "aselector_context_create(1=768, 2=1280, 3=1) "
#define SEARCH CREATE "aselector_asset_create(\"\xc3\xa4\", \"" ASSETS "\") "
#define END "aselector_context_destroy()"

// Which of the selector's functions fails.
const struct {
    const char *failing, *requests, *path = ASSETS "/\xc3\xa4";
} SELECTIONS[] = {
    {"", SEARCH "aselector_asset_get_path() aselector_asset_destroy() " END, "/\xc3\x83\xc2\xa4"},
    {"aselector_context_create", CREATE},
    {"aselector_asset_create", SEARCH END},
    {"aselector_asset_get_path", SEARCH "aselector_asset_get_path() aselector_asset_destroy() " END},
};

void serve(const QByteArray &text, const char *chosenTheme)
{
    const int fd = ::memfd_create("properties", MFD_CLOEXEC);
    QVERIFY(::write(fd, text, text.size()) == text.size() && ::lseek(fd, 0, SEEK_SET) == 0);
    RecordingPlatform::reset();
    RecordingPlatform::answer("devicefs_open", fd, 0);
    qputenv("MARIGOLD_THEME", chosenTheme);
}

} // namespace

class tst_AssetPaths : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aUrlBecomesAPath()
    {
        MessageLog messages;
        RecordingPlatform::answer("devicefs_open", -1, ENOENT);
        QVERIFY(QDir::setCurrent("/usr"));
        for (const auto &row : URLS) {
            row.home ? qputenv("HOME", row.home) : qunsetenv("HOME");
            QCOMPARE(UIToolkitSupport::absolutePathFromUrl(QUrl(row.url)), QString::fromUtf8(row.path));
            QCOMPARE(messages.take().join('|'), row.warnings);
        }
    }

    void theDeviceTellsItsScreenAndTheme()
    {
        MessageLog messages;
        for (const auto &row : DEVICES) {
            serve(row.text, row.chosenTheme);
            const DeviceProperties read = UIToolkitSupportPrivate::deviceProperties();
            QCOMPARE(QString("%1 %2 ").arg(read.width).arg(read.height) + read.theme,
                     QString::fromUtf8(row.properties));
            QCOMPARE(messages.take().join('|'), row.warnings);
            QVERIFY(RecordingPlatform::calls().back().starts_with("devicefs_close("));
        }
    }

    void theSelectorIsAskedForTheDevicesVariantAndFailsInSilence()
    {
        MessageLog messages;
        qputenv("HOME", "/apps/x/data");
        for (const auto &row : SELECTIONS) {
            serve(DARK "screen_res::768x1280\n", "Bright");
            RecordingPlatform::setText("aselector_asset_get_path", "/\xc3\xa4");
            RecordingPlatform::answer(row.failing, 1, EINVAL);
            const QString path = UIToolkitSupport::absolutePathFromUrl(QUrl("asset:////i/../\xc3\xa4"));
            QCOMPARE(path, QString::fromUtf8(row.path));
            const std::string requests = RecordingPlatform::takeRequests();
            QCOMPARE(requests.substr(requests.find("aselector")).c_str(), QString(row.requests).trimmed());
        }
        serve("@d\ndefaultTheme::\nscreen_res::1x2\n", "");
        QCOMPARE(UIToolkitSupport::absolutePathFromUrl(QUrl("asset:///a")), ASSETS "/a");
        QVERIFY(RecordingPlatform::takeRequests().find("aselector") == std::string::npos);
        UIToolkitSupportPrivate::assetAbsolutePath(-1, 2, "", "a/", "/d");
        QCOMPARE(RecordingPlatform::calls().front().c_str(), "aselector_context_create(1=-1, 2=2, 3=2)");
        QCOMPARE(messages.take(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_AssetPaths)
#include "tst_AssetPaths.moc"
