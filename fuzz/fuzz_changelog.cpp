// Input: lengths and pieces, as the change log arrives: a byte L, then L bytes, and so on; a length of 0
// stands for a report of progress, whose two numbers follow in 16 bits each.

#include "fuzz/input.h"
#include "fuzz/quietprogram.h"
#include "net/updatechecker.h"
#include "tests/support/inside.h"

namespace {

/// An answer whose bytes are there already.
class ReadyReply : public QNetworkReply
{
public:
    ReadyReply() { open(QIODevice::ReadOnly); }

    void arrive(const QByteArray& piece) { waiting += piece; }
    void abort() override {}
    [[nodiscard]] qint64 bytesAvailable() const override
    {
        return waiting.size() + QNetworkReply::bytesAvailable();
    }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 most) override
    {
        const qint64 size = std::min<qint64>(most, waiting.size());
        std::copy_n(waiting.constData(), size, data);
        waiting.remove(0, static_cast<int>(size));
        return size;
    }

private:
    QByteArray waiting;
};

UpdateChecker* onlyChecker = nullptr; ///< one for all inputs; it lives to the process's end
int lastPercent = 0;

/// `done` in per cent of `total`, where the total is known.
int percentOf(int done, int total)
{
    return total > 0 ? done * 100 / total : 100;
}

} // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    quietprogram::start();
    onlyChecker = new UpdateChecker;
    QObject::connect(onlyChecker, &UpdateChecker::downloadProgress,
                     [](int percent) { lastPercent = percent; });
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    ReadyReply reply;
    UpdateChecker& checker = *onlyChecker;
    const inside::Checker state = inside::of(checker);
    state.reply = &reply;
    state.received = 0;
    state.changeLogText.clear();
    QString expected;
    while (!input.isEmpty()) {
        const std::size_t length = input.byte();
        if (length == 0) {
            const int done = input.number16();
            const int total = input.number16() - 1;
            checker.onDataReadProgress(done, total);
            expect(lastPercent == percentOf(done, total), "the progress is that of the bytes");
            continue;
        }
        const QByteArray piece = input.bytes(length);
        reply.arrive(piece);
        checker.httpReadyRead3();
        const int zero = piece.indexOf('\0');
        expected += QString::fromUtf8(zero < 0 ? piece : piece.left(zero));
        expect(state.changeLogText == expected, "each piece is decoded by itself, up to its first zero byte");
    }
    return 0;
}
