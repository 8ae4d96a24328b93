#include "app/LinkOpener.h"

#include "common/FakeUi.h"

#include <gtest/gtest.h>

namespace {

TEST(BuildLinkCommand, LinkReplacesPercentOneOrIsAppended) {
    EXPECT_EQ(
        BuildLinkCommand(QStringLiteral("\"/usr/bin/mail\" \"%1\""), QStringLiteral("mailto:a@b")),
        QStringLiteral("\"/usr/bin/mail\" \"mailto:a@b\""));
    EXPECT_EQ(
        BuildLinkCommand(QStringLiteral("/usr/bin/mail -compose"), QStringLiteral("mailto:a@b")),
        QStringLiteral("/usr/bin/mail -compose mailto:a@b"));
}

TEST(BuildLinkCommand, EnvironmentNamesAreExpandedFirst) {
    qputenv("KELVARIS_TEST_ROOT", "/opt/mail");
    qunsetenv("KELVARIS_TEST_UNSET");
    EXPECT_EQ(
        BuildLinkCommand(QStringLiteral("%KELVARIS_TEST_ROOT%/bin/m %1"), QStringLiteral("L")),
        QStringLiteral("/opt/mail/bin/m L"));
    // An unset name stays as written and the scan goes on past it.
    EXPECT_EQ(BuildLinkCommand(QStringLiteral("%KELVARIS_TEST_UNSET%/m %KELVARIS_TEST_ROOT% %1"),
                               QStringLiteral("L")),
              QStringLiteral("%KELVARIS_TEST_UNSET%/m /opt/mail L"));
    // Only the next "%" ends a name, whatever stands between.
    EXPECT_EQ(BuildLinkCommand(QStringLiteral("m %not a name%"), QStringLiteral("L")),
              QStringLiteral("m %not a name% L"));
}

TEST(OpenLink, NoRegisteredProgramGivesTheDesignedMessage) {
    FakeUi ui;
    OpenLink(QStringLiteral("mailto"), QStringLiteral("mailto:x@y"), ui,
             [](const QString&) { return QString(); });
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].text, QStringLiteral("Unable to find a program for mailtolinks."));
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_TRUE(ui.starts.isEmpty());
}

TEST(OpenLink, StartsTheRegisteredProgramWithTheLink) {
    FakeUi ui;
    OpenLink(QStringLiteral("mailto"), QStringLiteral("mailto:x@y?subject=Kelvaris v1.0 build 0"),
             ui, [](const QString& protocol) {
                 return protocol == u"mailto"
                            ? QStringLiteral("\"/usr/bin/mail client\" --compose \"%1\"")
                            : QString();
             });
    EXPECT_TRUE(ui.messages.isEmpty());
    ASSERT_EQ(ui.starts.size(), 1);
    EXPECT_EQ(ui.starts[0].program, QStringLiteral("/usr/bin/mail client"));
    EXPECT_EQ(ui.starts[0].arguments,
              QStringList({QStringLiteral("--compose"),
                           QStringLiteral("mailto:x@y?subject=Kelvaris v1.0 build 0")}));
}

} // namespace
