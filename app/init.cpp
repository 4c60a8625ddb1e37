// Start-up in its exact order.
#include "app/init.h"

#include "app/base.h"
#include "app/cl.h"
#include "app/config.h"
#include "app/start.h"
#include "commands/as.h"
#include "fileops/slot.h"
#include "platform/signals.h"
#include "platform/w.h"
#include "views/fl.h"

#include <csignal>
#include <cstdlib>
#include <memory>
#include <string>
#include <unistd.h>

namespace tav {

namespace {

// What cannot be started with: a box, then the end with status 1.
void x_fatal(const char *message)
{
    wreport(nullptr, "Error", "%s", message);
    std::exit(EXIT_FAILURE);
}

void x_install_signals()
{
    signals_add({SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2},
                [](int) { base_terminate(); });
    signals_add({SIGWINCH}, [](int) { signal_refresh(); });
    std::signal(SIGPIPE, SIG_IGN);
}

} // namespace

int init(int argc, const char *const *argv)
{
    setpgid(0, 0); // refused to a session leader, which leads its group already
    start_settle_home();
    gStartPath = start_path(argc, argv);
    static std::string sConfigPath;
    gConfigPath = x_get_config_path(sConfigPath) == 0 ? sConfigPath.c_str() : nullptr;
    static Config sConfig;
    sConfig = *std::unique_ptr<Config>(x_read_config(gConfigPath, "config.003"));
    gConfig = &sConfig;
    init_read_cboxs(gConfigPath);
    gAsFatal = x_fatal;
    init_read_associations(gConfigPath, "associate.003");
    x_install_signals();
    return 0;
}

void signal_refresh()
{
    if (base_window_closed || base_is_gone())
        return;
    fl_refresh_outside();
}

} // namespace tav
