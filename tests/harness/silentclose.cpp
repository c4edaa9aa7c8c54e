// Preloaded: giving a unit back never comes to an end, as with one that does not answer the system's own
// driver.

#include <hidapi.h>

#include <unistd.h>

void hid_close(hid_device*)
{
    for (;;)
        pause();
}
