// The system calls of this program, too, come through the stand-ins.
#include "support/SystemCallFaults.cpp"
