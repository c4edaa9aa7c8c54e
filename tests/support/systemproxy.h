#pragma once

#include <QString>

/// Makes this address ("http://127.0.0.1:PORT") the system's HTTP proxy: on Linux that of this process, on
/// Windows that of the user.
void setSystemProxy(const QString& address);
