// Makes the Nth system call of a job fail.
#include "fop_driver.h"

#include <atomic>
#include <cerrno>

namespace tav {
namespace {

FopSys sNext;                // what a call does that is not made to fail
std::atomic<long> sCalls{0}; // calls so far
long sAt = -1;               // the call that fails, -1 none
int sError = 0;
bool sForEver = false; // and all after it
const char *sFailed = nullptr;

bool x_trip(const char *name)
{
    long number = sCalls++;
    bool trip = sAt >= 0 && (number == sAt || (sForEver && number > sAt));
    if (trip) {
        sFailed = name;
        errno = sError;
    }
    return trip;
}

// Wraps one entry of the table.
template <auto Member, typename Function>
struct Wrap;
template <auto Member, typename Result, typename... Arguments>
struct Wrap<Member, Result (*)(Arguments...)> {
    static inline const char *sName = nullptr;
    static Result call(Arguments... arguments)
    {
        if (x_trip(sName))
            return static_cast<Result>(-1);
        return (sNext.*Member)(arguments...);
    }
};

template <auto Member>
void x_wrap(const char *name)
{
    using Entry = Wrap<Member, std::remove_cvref_t<decltype(gFopSys.*Member)>>;
    Entry::sName = name;
    gFopSys.*Member = Entry::call;
}

// A failed close has closed all the same.
int x_close(int fd)
{
    int result = sNext.close(fd);
    return x_trip("close") ? -1 : result;
}

} // namespace

void Faults::install()
{
    sNext = gFopSys;
    x_wrap<&FopSys::openat>("openat");
    x_wrap<&FopSys::fstatat>("fstatat");
    x_wrap<&FopSys::fstat>("fstat");
    x_wrap<&FopSys::getdents>("getdents");
    x_wrap<&FopSys::read>("read");
    x_wrap<&FopSys::write>("write");
    x_wrap<&FopSys::copy_range>("copy_range");
    x_wrap<&FopSys::clone>("clone");
    x_wrap<&FopSys::lseek>("lseek");
    x_wrap<&FopSys::ftruncate>("ftruncate");
    x_wrap<&FopSys::mkdirat>("mkdirat");
    x_wrap<&FopSys::mkfifoat>("mkfifoat");
    x_wrap<&FopSys::readlinkat>("readlinkat");
    x_wrap<&FopSys::symlinkat>("symlinkat");
    x_wrap<&FopSys::linkfd>("linkfd");
    x_wrap<&FopSys::renameat>("renameat");
    x_wrap<&FopSys::unlinkat>("unlinkat");
    x_wrap<&FopSys::fchmod>("fchmod");
    x_wrap<&FopSys::fchmodat>("fchmodat");
    x_wrap<&FopSys::fchownat>("fchownat");
    x_wrap<&FopSys::utimensat>("utimensat");
    x_wrap<&FopSys::listxattr>("listxattr");
    x_wrap<&FopSys::getxattr>("getxattr");
    x_wrap<&FopSys::setxattr>("setxattr");
    x_wrap<&FopSys::syncfs>("syncfs");
    gFopSys.close = x_close;
    arm(-1, 0);
}

void Faults::arm(long n, int error, bool for_ever)
{
    sCalls = 0;
    sAt = n;
    sError = error;
    sForEver = for_ever;
    sFailed = nullptr;
}

long Faults::calls() { return sCalls; }
const char *Faults::failed() { return sFailed; }

} // namespace tav
