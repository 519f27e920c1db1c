// The millisecond counter, from the host. See clock.h.
#include "ixomep/host/clock.h"

#include "ixomep/host/host.h"

std::uint32_t GetTickCount() { return IxoHost::Current().TickCount(); }
