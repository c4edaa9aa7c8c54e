#include "net/signature.h"
#include "tests/support/rows.h"
#include "tests/support/signer.h"

#include <QtTest>

Q_DECLARE_METATYPE(Signer::Kind)

namespace {

using Kind = Signer::Kind;

constexpr auto differs = "the signature is not that of this file";
constexpr auto otherComment = "the trusted comment is not the one that was signed";
constexpr auto otherKey = "the signature was made with another key";
constexpr auto unknownKind = "the signature is of an unknown kind";
constexpr auto fewLines = "the signature file has fewer than four lines";
constexpr auto longLine = "the signature file's first line is too long";
constexpr auto tooLarge = "the signature file is too large";
constexpr auto no74 = "the signature is not 74 bytes in base64";
constexpr auto no64 = "the trusted comment's signature is not 64 bytes in base64";
constexpr auto noComment = "the signature file has no trusted comment";

constexpr int first = 1; ///< line, from 0: label, key ID, signature
constexpr int comment = 2;
constexpr int second = 3;

const QByteArray content = "MainVer=11\r\nHB4Ver=27\r\n";
const QByteArray commentText = "timestamp:1 file:versions.txt";

/// `file` with `text` behind its third line's "trusted comment: ".
QByteArray withComment(const QByteArray& file, const QByteArray& text)
{
    return withLine(file, comment, "trusted comment: " + text);
}

/// The base64 of the same bytes with its last character's spare bits set.
QByteArray withSpareBit(QByteArray base64)
{
    const QByteArray digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    int last = base64.size() - 1;
    while (base64.at(last) == '=')
        --last;
    base64[last] = digits.at(digits.indexOf(base64.at(last)) + 1);
    return base64;
}

} // namespace

/// Signatures as minisign makes them, and what somebody else makes of them.
class TestSignature : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void key_data();
    void key();
    void noByteBeyondAsciiIsALetter();
    void good_data();
    void good();
    void anyContent_data();
    void anyContent();
    void refused_data();
    void refused();
    void everyBit_data();
    void everyBit();
    void keyOfTheSameId();
    void secondSignatureAsAFirst();

private:
    [[nodiscard]] const char* faultOf(const QByteArray& file, const QByteArray& of = content) const
    {
        return signature::fault(publicKey, of, file);
    }
    [[nodiscard]] QByteArray file(Kind kind) const { return kind == Kind::digest ? digest : whole; }

    Signer signer;
    Signer stranger;
    signature::PublicKey publicKey;
    QByteArray digest; ///< the content's signature file, of either kind
    QByteArray whole;
};

void TestSignature::initTestCase()
{
    const auto parsed = signature::parseKey(signer.publicKey());
    QVERIFY(parsed.has_value());
    publicKey = *parsed;
    digest = signer.sign(content, Kind::digest, commentText);
    whole = signer.sign(content, Kind::whole, commentText);
    QCOMPARE(decodedLine(digest, first).left(2), QByteArray("ED"));
    QCOMPARE(decodedLine(whole, first).left(2), QByteArray("Ed"));
}

void TestSignature::key_data()
{
    const Rows<QByteArray, bool> row("line", "isKey");
    const QByteArray line = signer.publicKey();
    const QByteArray decoded = QByteArray::fromBase64(line);
    row("a key", line, true);
    row("nothing", {}, false);
    row("a character too few", line.chopped(1), false);
    row("a byte too few", decoded.chopped(1).toBase64(), false);
    row("a byte too many", (decoded + 'x').toBase64(), false);
    row("four characters too many", line + "AAAA", false);
    row("padded", line + "=", false);
    row("a line end behind it", line + "\n", false);
    row("a blank before it", " " + line, false);
    row("no base64", line.left(20) + "!" + line.mid(21), false);
    row("the other base64's letter", line.left(20) + "_" + line.mid(21), false);
    row("label of a signature", ("ED" + decoded.mid(2)).toBase64(), false);
    row("the key file's comment", "untrusted comment: minisign public key", false);
}

void TestSignature::key()
{
    QFETCH(QByteArray, line);
    QTEST(signature::parseKey(line).has_value(), "isKey");
}

/// libsodium 1.0.18 takes some of them for letters.
void TestSignature::noByteBeyondAsciiIsALetter()
{
    const QByteArray key = signer.publicKey();
    for (int place = 0; place < key.size(); ++place) {
        for (int byte = 0x80; byte <= 0xFF; ++byte) {
            QByteArray line = key;
            line[place] = static_cast<char>(byte);
            QVERIFY2(!signature::parseKey(line), line.toPercentEncoding());
        }
    }
}

void TestSignature::good_data()
{
    QTest::addColumn<QByteArray>("file");
    for (const auto& [kind, name] : {std::pair(Kind::digest, "ED"), std::pair(Kind::whole, "Ed")}) {
        const QByteArray plain = file(kind);
        QByteArray crlf = plain;
        crlf.replace("\n", "\r\n");
        const auto row = [name = name](const char* what, const QByteArray& bytes) {
            QTest::addRow("%s, %s", name, what) << bytes;
        };
        row("as it was made", plain);
        row("CRLF", crlf);
        row("last line without its end", plain.chopped(1));
        row("last line with CR alone", plain.chopped(1) + '\r');
        row("lines behind the fourth", plain + "more\n\nand more");
        row("another untrusted comment", withLine(plain, 0, "untrusted comment: trust me"));
        row("untrusted comment that is none", withLine(plain, 0, "anything"));
        row("empty first line", withLine(plain, 0, ""));
        row("first line of 1024 bytes", withLine(plain, 0, QByteArray(1024, 'x')));
        row("file of 16384 bytes", plain.leftJustified(16 * 1024, '\n'));
    }
    QTest::newRow("another trusted comment") << signer.sign(content, Kind::digest, "another");
    QTest::newRow("long trusted comment") << signer.sign(content, Kind::digest, QByteArray(4000, 'x'));
}

void TestSignature::good()
{
    QFETCH(QByteArray, file);
    QCOMPARE(faultOf(file), nullptr);
}

void TestSignature::anyContent_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("a NUL byte") << QByteArray(1, '\0');
    QTest::newRow("all bytes") << [] {
        QByteArray all;
        for (int byte = 0; byte < 256; ++byte)
            all += static_cast<char>(byte);
        return all;
    }();
    QTest::newRow("a megabyte") << QByteArray(1 << 20, 'x');
}

void TestSignature::anyContent()
{
    QFETCH(QByteArray, content);
    for (const Kind kind : {Kind::digest, Kind::whole}) {
        const QByteArray file = signer.sign(content, kind);
        QCOMPARE(faultOf(file, content), nullptr);
        QCOMPARE(faultOf(file, content + 'x'), differs);
    }
}

void TestSignature::refused_data()
{
    const Rows<QByteArray, QString> row("file", "fault");
    const QByteArrayList lines = digest.split('\n');
    const auto relabelled = [this](Kind kind, const char* label) {
        return withDecodedLine(file(kind), first, label + decodedLine(file(kind), first).mid(2));
    };
    row("empty file", "", fewLines);
    row("one line", lines[0] + '\n', fewLines);
    row("two lines", lines[0] + '\n' + lines[1] + '\n', fewLines);
    row("three lines", lines[0] + '\n' + lines[1] + '\n' + lines[2] + '\n', fewLines);
    row("CR instead of LF", QByteArray(digest).replace('\n', '\r'), fewLines);
    row("a page", "<html>\n<body>\nPlease sign in.\n</body>\n", no74);
    row("first line of 1025 bytes", withLine(digest, 0, QByteArray(1025, 'x')), longLine);
    row("file of 16385 bytes", digest.leftJustified(16 * 1024 + 1, '\n'), tooLarge);
    row("label ED of a signature Ed", relabelled(Kind::whole, "ED"), differs);
    row("label Ed of a signature ED", relabelled(Kind::digest, "Ed"), differs);
    row("label in small letters", relabelled(Kind::digest, "ed"), unknownKind);
    row("another label", relabelled(Kind::digest, "RS"), unknownKind);
    row("by a stranger", stranger.sign(content), otherKey);
    row("of another file", signer.sign(content + '\n'), differs);
    row("altered comment", withComment(digest, commentText + '!'), otherComment);
    row("shorter comment", withComment(digest, commentText.chopped(1)), otherComment);
    row("empty comment", withComment(digest, ""), otherComment);
    row("a blank behind the comment", withComment(digest, commentText + ' '), otherComment);
    row("two CRs behind the comment", withComment(digest, commentText + "\r\r"), otherComment);
    row("a NUL byte behind the comment", withComment(digest, commentText + '\0'), otherComment);
    row("comment without its heading", withLine(digest, comment, commentText), noComment);
    row("heading without its blank", withLine(digest, comment, "trusted comment:" + commentText), noComment);
    row("untrusted heading", withLine(digest, comment, "untrusted comment: " + commentText), noComment);
    row("empty first signature", withLine(digest, first, ""), no74);
    row("first signature a byte short", withDecodedLine(digest, first, decodedLine(digest, first).chopped(1)),
        no74);
    row("first signature a byte long", withDecodedLine(digest, first, decodedLine(digest, first) + 'x'),
        no74);
    row("spare bit of the first signature", withLine(digest, first, withSpareBit(lines[first])), no74);
    row("first signature without padding", withLine(digest, first, lines[first].chopped(1)), no74);
    row("a blank behind the first signature", withLine(digest, first, lines[first] + ' '), no74);
    row("a letter behind the first signature", withLine(digest, first, lines[first] + 'A'), no74);
    row("empty second signature", withLine(digest, second, ""), no64);
    row("second signature a byte short",
        withDecodedLine(digest, second, decodedLine(digest, second).chopped(1)), no64);
    row("second signature a byte long", withDecodedLine(digest, second, decodedLine(digest, second) + 'x'),
        no64);
    row("spare bit of the second signature", withLine(digest, second, withSpareBit(lines[second])), no64);
    row("second signature of another file", withLine(digest, second, whole.split('\n').at(second)),
        otherComment);
    row("both signatures exchanged", withLine(withLine(digest, first, lines[second]), second, lines[first]),
        no74);
}

void TestSignature::refused()
{
    QFETCH(QByteArray, file);
    QTEST(QString(faultOf(file)), "fault");
}

void TestSignature::everyBit_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::newRow("ED") << Kind::digest;
    QTest::newRow("Ed") << Kind::whole;
}

void TestSignature::everyBit()
{
    QFETCH(Kind, kind);
    const QByteArray good = file(kind);
    QCOMPARE(faultOf(good), nullptr);
    for (const int line : {first, second}) {
        const QByteArray decoded = decodedLine(good, line);
        QCOMPARE(decoded.size(), line == first ? 74 : 64);
        for (int bit = 0; bit < 8 * decoded.size(); ++bit)
            QVERIFY2(faultOf(withDecodedLine(good, line, withBitFlipped(decoded, bit))) != nullptr,
                     qPrintable(QString("line %1, bit %2").arg(line).arg(bit)));
    }
    for (int bit = 0; bit < 8 * commentText.size(); ++bit)
        QVERIFY2(faultOf(withComment(good, withBitFlipped(commentText, bit))) != nullptr,
                 qPrintable(QString("comment, bit %1").arg(bit)));
    for (int bit = 0; bit < 8 * content.size(); ++bit)
        QCOMPARE(faultOf(good, withBitFlipped(content, bit)), differs);
}

/// The ID is only a name: it proves nothing.
void TestSignature::keyOfTheSameId()
{
    signature::PublicKey other = *signature::parseKey(stranger.publicKey());
    other.id = publicKey.id;
    QCOMPARE(signature::fault(other, content, digest), differs);
}

/// The second signature is one by the right key too, over 64 bytes and a text: as the signature "Ed" of just
/// these it must not do.
void TestSignature::secondSignatureAsAFirst()
{
    const QByteArray original = decodedLine(digest, first);
    const QByteArray made = original.mid(10) + commentText;
    const QByteArray forged =
        withDecodedLine(digest, first, "Ed" + original.mid(2, 8) + decodedLine(digest, second));
    QCOMPARE(faultOf(forged, made), otherComment);
    for (const QByteArray& text : {QByteArray(), commentText})
        QCOMPARE(faultOf(withComment(forged, text), made), otherComment);
}

QTEST_GUILESS_MAIN(TestSignature)
#include "tst_signature.moc"
