#include "shell/daemon.h"

#include <stdexcept>

#include <tarnd_qrb/database.h>
#include <tarnd_qrb/memory_map.h>

namespace shell {

void StartLibrary()
{
    MEM_EX_Init();
    if (QRB_DB_InitOrm() != 0)
        throw std::runtime_error("the access layer does not start");
}

}  // namespace shell
