#pragma once

#include <QByteArray>

#ifdef Q_OS_LINUX
#include <array>
#include <cstdint>

#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

/// While this object lives, no file can be created, renamed or removed in a folder of this user (Linux).
/// This holds for root, too, on the thread that created the object and on threads started from it.
class ReadOnlyFolder
{
public:
    explicit ReadOnlyFolder(QByteArray folder) : path(std::move(folder))
    {
        constexpr std::uint32_t overridesPermissions = 1U << CAP_DAC_OVERRIDE;
        auto without = before;
        without[0].effective &= ~overridesPermissions;
        if (syscall(SYS_capset, &header, without.data()) != 0 ||
            chmod(path.constData(), S_IRUSR | S_IXUSR) != 0)
            qFatal("cannot make %s read-only", path.constData());
    }
    ~ReadOnlyFolder()
    {
        chmod(path.constData(), S_IRWXU);
        syscall(SYS_capset, &header, before.data());
    }
    Q_DISABLE_COPY_MOVE(ReadOnlyFolder)

private:
    using Sets = std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3>;

    static Sets capabilities(__user_cap_header_struct* header)
    {
        Sets sets{};
        if (syscall(SYS_capget, header, sets.data()) != 0)
            qFatal("capget");
        return sets;
    }

    QByteArray path;
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const Sets before = capabilities(&header);
};
#endif
