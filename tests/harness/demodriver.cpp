// Does with the program's window what a person does, from Connect to "Update: finished", and keeps a
// picture of each stage; then pulls the unit's log in a second run.
//
//     talvex-demo-driver --proxy http://127.0.0.1:PORT --unit OPTIONS --pictures FOLDER --log FILE
//         [--mishaps] [--set NAME=VALUE]...
//
// FILE gets what the program stored of the unit's log. --mishaps adds the pictures of what rarely shows: a
// download in its midst, a stopped log, an offer's change log, no unit, no network, a pair, refusals. --set
// is for the program's environment. Exit code: 0 both runs came to their end and the program ended with 0; 1
// a stage failed, said on the error output.

#include "tests/harness/demo.h"
#include "tests/support/texts.h"

#include <QCommandLineParser>

#include <cstdio>
#include <functional>
#include <vector>

namespace {

Outcome demonstrateMishaps(Desktop& desktop, const QDir& pictures, int count,
                           const QCommandLineParser& arguments)
{
    const QString proxy = arguments.value("proxy");
    const QString unit = arguments.value("unit").section(',', 0, 1);
    const auto refusal = [&unit](const char* stage, const char* fault) {
        return [=](Demo& demo) { return demo.seeRefusal(stage, unit + ",fault=" + fault, true); };
    };
    const std::vector<std::function<Outcome(Demo&)>> stages{
        [&](Demo& demo) { return demo.seeFirstBox("not-found", proxy, {}); },
        [&](Demo& demo) {
            return demo.seeFirstBox("pair", proxy, {"trk900-left,version=23", "trk900-right,version=23"});
        },
        [&](Demo& demo) { return demo.seeProblem(unit); },
        [&](Demo& demo) { return demo.seeChangeLog(proxy, unit); },
        [&](Demo& demo) { return demo.seeDownload(unit); },
        [&](Demo& demo) { return demo.stopLog(proxy, arguments.value("unit")); },
        [&](Demo& demo) { return demo.seeLatest(proxy); },
        [&](Demo& demo) { return demo.seeUpdaterOffer(unit); },
        [&](Demo& demo) { return demo.seeRefusal("image-missing", unit, false); },
        refusal("timed-out", "refuses-timeout"),
        refusal("packets-skipped", "refuses-skipped"),
        refusal("wrong-md5", "wrong-digest"),
        refusal("update-failed", "rejects-image"),
    };
    for (const auto& see : stages) {
        Demo demo(desktop, pictures, count++, arguments.values("set"));
        STEP(see(demo));
    }
    return {};
}

Outcome demonstrate(const QCommandLineParser& arguments)
{
    const QDir pictures(arguments.value("pictures"));
    if (!pictures.mkpath("."))
        return Outcome("cannot make the folder " + pictures.path());
    Desktop desktop;
    STEP(desktop.start());
    const QString proxy = arguments.value("proxy");
    const QString unit = arguments.value("unit");
    const QStringList variables = arguments.values("set");
    Demo first(desktop, pictures, 0, variables);
    STEP(first.update(proxy, unit));
    Demo second(desktop, pictures, first.pictureCount(), variables);
    STEP(second.pullLog(proxy, unit, arguments.value("log")));
    return arguments.isSet("mishaps")
               ? demonstrateMishaps(desktop, pictures, second.pictureCount(), arguments)
               : Outcome();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser arguments;
    arguments.addOptions({
        {"proxy", "Where the update server answers.", "address"},
        {"unit", "The unit that is plugged in, as the virtual HID library is told.", "options"},
        {"pictures", "Where the pictures go.", "folder"},
        {"log", "Where the stored log goes.", "file"},
        {"mishaps", "Picture what rarely shows, too."},
        {"set", "A variable of the program's environment.", "name=value"},
    });
    arguments.addHelpOption();
    arguments.process(application);
    const Outcome outcome = demonstrate(arguments);
    if (!outcome.good())
        std::fprintf(stderr, "%s\n", qPrintable(outcome.problem()));
    return outcome.good() ? 0 : 1;
}
