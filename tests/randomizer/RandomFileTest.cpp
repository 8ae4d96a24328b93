#include "randomizer/RandomFile.h"

#include "common/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <deque>

namespace {

class RandomFileTest : public TestEnvironment {
protected:
    QString library(const QStringList& names) {
        const QString folder = root() + "/lib/";
        for (const QString& name : names)
            writeFile("lib/" + name, QByteArray("DDS ").leftJustified(128, '\0'));
        return folder;
    }
    // Plays back the given draws, then keeps returning the last one.
    static UniformRandom draws(std::deque<double> values) {
        auto queue = std::make_shared<std::deque<double>>(std::move(values));
        return [queue] {
            const double v = queue->front();
            if (queue->size() > 1)
                queue->pop_front();
            return v;
        };
    }
    static QString pick(const QString& folder, const UniformRandom& random = ClockSeededRandom()) {
        return RandomFile(folder, "RandomHL", random);
    }
    static QString lastPick() { return setting("RandomHL"); }
};

TEST_F(RandomFileTest, OnlyDdsFilesAreListed) {
    const QString folder = library({"a.dds", "B.DDS", "c.jpg", "d.dds.txt", ".hidden.dds"});
    QDir().mkpath(folder + "folder.dds");
    // Nothing that is not a picture file of a DDS file's size: copying from
    // a device or a FIFO would never end.
    writeFile("lib/empty.dds", "");
    writeFile("lib/short.dds", "DDS ");
    QFile::link("/dev/zero", folder + "zero.dds");
    ASSERT_TRUE(makeFifo(folder + "fifo.dds"));
    QStringList names = ListLibraryImages(folder);
    names.sort();
    EXPECT_EQ(names, QStringList({"B.DDS", "a.dds"}));
    // A game start's pick is one of them, wherever the draws land.
    for (double at : {0.0, 0.15, 0.3, 0.45, 0.6, 0.75, 0.9, 0.99})
        EXPECT_TRUE(names.contains(pick(folder, draws({at})))) << at;
}

TEST_F(RandomFileTest, ASingleImageIsPickedEveryTimeAndNoImageForgetsIt) {
    const QString folder = library({"only.dds"});
    for (int run = 0; run < 3; ++run)
        EXPECT_EQ(pick(folder), "only.dds");
    EXPECT_EQ(lastPick(), "only.dds");
    // A library without images forgets the last pick.
    writeFile("other/x.png", "x");
    EXPECT_EQ(pick(root() + "/other/"), QString());
    EXPECT_EQ(lastPick(), QString());
}

TEST_F(RandomFileTest, TwoImagesAlternateUntilTheTenthDraw) {
    const QString folder = library({"one.dds", "two.dds"});
    const QString first = pick(folder, draws({0.0}));
    // Draws that keep hitting the previous pick are drawn again.
    const double firstIndex = ListLibraryImages(folder).indexOf(first);
    const double same = firstIndex / 2.0, other = (1.0 - firstIndex) / 2.0;
    const QString second = pick(folder, draws({same, same, other}));
    EXPECT_NE(second, first);
    EXPECT_EQ(pick(folder, draws({other, other, same})), first);
    EXPECT_EQ(lastPick(), first);
    // The tenth draw is kept even when it repeats.
    int calls = 0;
    EXPECT_EQ(pick(folder,
                   [&] {
                       ++calls;
                       return same;
                   }),
              first);
    EXPECT_EQ(calls, 10);
}

TEST_F(RandomFileTest, HugeLibraryIsListedOnlyUpToTheLimit) {
    QStringList names;
    for (int i = 0; i < 35000; ++i)
        names << QStringLiteral("img %1.dds").arg(i);
    const QString folder = library(names);
    EXPECT_EQ(ListLibraryImages(folder).size(), kLibraryListLimit);
    EXPECT_TRUE(QFile::exists(folder + pick(folder, draws({0.999999}))));
}

} // namespace
