// The floor for the randomizer start: a bare Qt program that starts, copies
// one file to two places a megabyte at a time (as the randomizer copies the
// login and character screens) and ends, without any window system.
// Usage: bench_bare_start SOURCE TARGET1 TARGET2

#include <QCoreApplication>
#include <QFile>
#include <vector>

namespace {

bool copy(const QString& source, const QString& target) {
    QFile in(source);
    QFile out(target);
    if (!in.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ||
        !out.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return false;
    std::vector<char> buffer(1024 * 1024);
    qint64 got = 0;
    while ((got = in.read(buffer.data(), qint64(buffer.size()))) > 0)
        if (out.write(buffer.data(), got) != got)
            return false;
    return got == 0;
}

} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return 2;
    return copy(arguments[1], arguments[2]) && copy(arguments[1], arguments[3]) ? 0 : 1;
}
