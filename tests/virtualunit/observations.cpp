#include "tests/virtualunit/observations.h"

std::vector<Observation> allObservations()
{
    return {
        {"what is listed",
         "list",
         {"plt65,period-ms=100"},
         {"3a5d:2c01 PLT-65 0001 Talvex", "release 0100 usage 0:0 interface 0 bus 1", "open"}},
        {"unit without product string",
         "list",
         {"hb4,no-product=yes"},
         {"3a5d:0a21 (none) (none) (none)", "release 0100 usage 0:0 interface 0 bus 1", "open"}},
        {"two units of a model",
         "twins",
         {"hb4,version=1", "hb4,version=2"},
         {"read 64, version 2", "read 64, version 1"}},
        {"second opening", "open-twice", {"hb4"}, {"first 1, second 0", "listed as HB4", "afterwards 1"}},
        {"strings",
         "strings",
         {"trk300-left"},
         {"product 0 TRK-300 L", "product in 3 0 TR", "serial 0 0001", "maker 0 Talvex", "index 9 -1 ",
          "error hid_error is not implemented yet"}},
        {"written lengths",
         "writes",
         {"hb4"},
         {"write of 65: 65", "write of 3: 3", "write of 0: -1", "write of 65: 65"}},
        {"waiting reads",
         "reads",
         {"hb4,fault=no-version-report"},
         {"nothing comes 0, 30 ms later", "nonblocking 0", "at once 0"}},
        {"reports nobody reads",
         "queue",
         {"hb4,period-ms=10,accept-ms=200,fault=header-never-comes"},
         {"kept 32, status 9 to 9"}},
        {"unit that is unplugged",
         "unplug",
         {"hb4,period-ms=20,fault=unplugged-at:2"},
         {"the last write 65", "listed 0, opened 0", "write -1", "reports from before, then -1",
          "read without limit -1", "serial -1"}},
        {"unit that takes nothing",
         "takes-nothing",
         {"hb4,fault=takes-nothing"},
         {"write -1, a second later", "read 64"}},
    };
}

Observation forbiddenUnit()
{
    return {"unit that the user must not open",
            "list",
            {"hb4"},
            {"3a5d:0a21 (none) (none) (none)", "release 0100 usage 0:0 interface 0 bus 1", "closed"}};
}
