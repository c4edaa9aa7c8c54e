// The user's guide says what the program says: its quotations are bold.

#include "tests/support/filecontent.h"
#include "tests/support/texts.h"
#include "unit/unittype.h"

#include <QDir>
#include <QRegularExpression>
#include <QtTest>

namespace {

const QDir documents(TALVEX_SOURCES "/docs");

const QString& guide()
{
    static const QString text = QString::fromUtf8(contentOrFatal(documents.filePath("user-guide.md")));
    return text;
}

/// What the pattern's first group matches in a text, each once, in order.
QStringList matches(const QString& text, const QString& pattern)
{
    QStringList found;
    auto match =
        QRegularExpression(pattern, QRegularExpression::DotMatchesEverythingOption).globalMatch(text);
    while (match.hasNext())
        found += match.next().captured(1);
    found.removeDuplicates();
    return found;
}

/// What a part of the guide quotes, without its line breaks.
QStringList quotationsIn(const QString& part)
{
    QStringList quoted = matches(part, "\\*\\*(.+?)\\*\\*");
    for (QString& text : quoted)
        text = text.simplified();
    return quoted;
}

/// The program, with a blank for each line break in its texts.
const QByteArray& program()
{
    static const QByteArray bytes =
        contentOrFatal(qEnvironmentVariable("TALVEX_TEST_PROGRAM")).replace('\n', ' ');
    return bytes;
}

bool isInProgram(const QString& text)
{
    const QByteArray wide(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    return program().contains(text.toUtf8()) || program().contains(wide);
}

/// The texts between two lines of tests/support/texts.h, by their names.
QMap<QString, QString> programTexts(const QString& from, const QString& to)
{
    const QString header = QString::fromUtf8(contentOrFatal(TALVEX_SOURCES "/tests/support/texts.h"));
    const QString block = matches(header, from + "\n(.*)\n" + to).value(0);
    const QRegularExpression constant("constexpr auto (\\w+) =((?:\\s*\"[^\"]*\")+);");
    QMap<QString, QString> texts;
    for (auto match = constant.globalMatch(block); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        const QString pieces = matches(found.captured(2), "\"([^\"]*)\"").join(QString());
        texts[found.captured(1)] = QString(pieces).replace("\\n", " ");
    }
    return texts;
}

/// One row for each text, and the quotations among which it must be.
void addTexts(const QMap<QString, QString>& texts, const QStringList& quotations)
{
    for (auto text = texts.begin(); text != texts.end(); ++text)
        QTest::newRow(qPrintable(text.key())) << text.value() << quotations;
}

} // namespace

class tst_userguide : public QObject
{
    Q_OBJECT

private slots:
    void quotation_data();
    void quotation();
    void everyText_data();
    void everyText();
    void models();
    void twelvePictures();
    void links_data();
    void links();
};

void tst_userguide::quotation_data()
{
    QTest::addColumn<QString>("text");
    const QStringList buttonsOfQt{"OK", "Yes", "No", "Show Details..."};
    for (const QString& text : quotationsIn(guide()))
        if (!buttonsOfQt.contains(text))
            QTest::newRow(qPrintable(text)) << text;
}

void tst_userguide::quotation()
{
    QFETCH(QString, text);
    QVERIFY2(isInProgram(text), "the program has no such text");
}

void tst_userguide::everyText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("quotations");
    const QMap<QString, QString> boxes = programTexts("// boxes", "\\} // namespace text");
    QVERIFY(boxes.contains("notFound"));
    const QString table = matches(guide(), "## What the messages mean(.*?)\n## ").value(0);
    addTexts(boxes, quotationsIn(matches(table, "\n(\\|[^|\n]*)\\|").join('\n')));
    const QMap<QString, QString> others = programTexts("// the labels above the bars", "// boxes");
    QVERIFY(others.contains("updateFinished"));
    addTexts(others, quotationsIn(guide()));
}

void tst_userguide::everyText()
{
    QFETCH(QString, text);
    QFETCH(QStringList, quotations);
    const auto holdsText = [&](const QString& quotation) { return quotation.contains(text); };
    QVERIFY2(std::any_of(quotations.begin(), quotations.end(), holdsText), qPrintable(text));
}

void tst_userguide::models()
{
    const QString ending = " connected";
    QStringList expected;
    QStringList players;
    for (const UnitModel& model : unitModels) {
        const QString message(model.pairMessage != nullptr ? model.pairMessage : model.connectedMessage);
        QVERIFY(message.endsWith(ending));
        const QString name = message.chopped(ending.size()).replace("/", " or ");
        const QString line = "| %1 | **%2** |";
        if (model.pairMessage != nullptr)
            players += line.arg(name + ", both decks", message);
        else
            expected += line.arg(name, message);
    }
    players.removeDuplicates();
    expected += players;
    const QString section = matches(guide(), "## Supported models(.*?)\n## ").value(0);
    QStringList rows = section.split('\n').filter(QRegularExpression("^\\|"));
    QCOMPARE(rows.mid(2).join('\n'), expected.join('\n')); // below the heading
}

void tst_userguide::twelvePictures()
{
    QStringList shown = matches(guide(), "!\\[[^\\]]+\\]\\(images/guide/([^)]+)\\)");
    QCOMPARE(guide().count("!["), 12);
    shown.sort();
    QCOMPARE(shown, QDir(documents.filePath("images/guide")).entryList(QDir::Files, QDir::Name));
}

void tst_userguide::links_data()
{
    QTest::addColumn<QString>("target");
    for (const QString& target : matches(guide(), "[^!]\\[[^\\]]+\\]\\(([^)]+)\\)"))
        QTest::newRow(qPrintable(target)) << target;
}

void tst_userguide::links()
{
    QFETCH(QString, target);
    QVERIFY(documents.exists(target));
}

QTEST_GUILESS_MAIN(tst_userguide)

#include "tst_userguide.moc"
