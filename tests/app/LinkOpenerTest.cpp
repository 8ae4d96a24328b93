#include "app/LinkOpener.h"

#include "common/FakeUi.h"

#include <gtest/gtest.h>

namespace {

TEST(BuildLinkCommand, ExpandsSetNamesThenPutsTheLinkAtPercentOneOrAtTheEnd) {
    qputenv("KELVARIS_TEST_ROOT", "/opt/mail");
    qunsetenv("KELVARIS_TEST_UNSET");
    EXPECT_EQ(BuildLinkCommand("\"/usr/bin/mail\" \"%1\"", "mailto:a@b"),
              "\"/usr/bin/mail\" \"mailto:a@b\"");
    EXPECT_EQ(BuildLinkCommand("/usr/bin/mail -compose", "mailto:a@b"),
              "/usr/bin/mail -compose mailto:a@b");
    EXPECT_EQ(BuildLinkCommand("%KELVARIS_TEST_ROOT%/bin/m %1", "L"), "/opt/mail/bin/m L");
    // An unset name stays as written and the scan goes on past it.
    EXPECT_EQ(BuildLinkCommand("%KELVARIS_TEST_UNSET%/m %KELVARIS_TEST_ROOT% %1", "L"),
              "%KELVARIS_TEST_UNSET%/m /opt/mail L");
    // Only the next "%" ends a name, whatever stands between.
    EXPECT_EQ(BuildLinkCommand("m %not a name%", "L"), "m %not a name% L");
}

TEST(OpenLink, StartsTheRegisteredProgramOrSaysThereIsNone) {
    FakeUi ui;
    const auto registered = [](const QString& protocol) {
        return protocol == u"mailto" ? "\"/usr/bin/mail client\" --compose \"%1\"" : QString();
    };
    OpenLink("mailto", "mailto:x@y?subject=Kelvaris v1.0 build 0", ui, registered);
    EXPECT_TRUE(ui.messages.isEmpty());
    ASSERT_EQ(ui.starts.size(), 1);
    EXPECT_EQ(ui.starts[0].program, "/usr/bin/mail client");
    EXPECT_EQ(ui.starts[0].arguments,
              QStringList({"--compose", "mailto:x@y?subject=Kelvaris v1.0 build 0"}));

    OpenLink("news", "news:x", ui, registered);
    EXPECT_EQ(ui.messageTexts(), QStringList{"Unable to find a program for newslinks."});
    EXPECT_EQ(ui.starts.size(), 1);
}

} // namespace
