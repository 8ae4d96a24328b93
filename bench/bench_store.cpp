#include "app/RegText.h"
#include "app/modRegistry.h"

#include <QDir>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

// A store of `count` values, as a player's grows with the game's own keys.
QByteArray storeText(int count) {
    RegDocument doc;
    RegKey& key = doc.addKey(QStringLiteral("HKEY_CURRENT_USER\\Software\\CohKelvaris"));
    for (int i = 0; i < count; ++i)
        key.setValue(QStringLiteral("Value%1").arg(i), QStringLiteral("/games/coh/%1").arg(i));
    return WriteRegedit4(doc);
}

// Reading the store, which every setting's lookup does afresh: the time per
// value must stay flat as the store grows (the complexity is reported).
void BM_ReadStore(benchmark::State& state) {
    const QByteArray text = storeText(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(ParseRegedit4(text));
    state.SetComplexityN(state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ReadStore)->RangeMultiplier(4)->Range(64, 16384)->Complexity();

// One setting looked up in a store of 3000 values on disk, as the window's
// start-up does for each of its controls.
void BM_QueryValueIn3000(benchmark::State& state) {
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    QDir().mkpath(home.path() + QStringLiteral("/kelvaris"));
    QFile file(modRegistry::StoreFilePath());
    file.open(QIODevice::WriteOnly);
    file.write(storeText(3000));
    file.close();
    for (auto _ : state)
        benchmark::DoNotOptimize(
            modRegistry::QueryValue(kSettingsKey, QStringLiteral("Value2999")));
}
BENCHMARK(BM_QueryValueIn3000)->Unit(benchmark::kMicrosecond);

} // namespace
