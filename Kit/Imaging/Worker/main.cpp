#include "Kit/Imaging/Worker/ZQRenderLoop.h"

// Decodes pictures for Zelto, which starts it; of no use by itself.
int main(int argc, char *argv[])
{
    return zqRunRenderLoop(argc, argv);
}
