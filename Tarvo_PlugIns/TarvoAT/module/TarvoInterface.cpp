// TarvoInterface: the function that hosts look up in the bundle.
#include "TarvoSDK/TarvoSDK.h"

#include "Tarvo_PlugIns/TarvoAT/private/TarvoATInterface.h"

std::int32_t TarvoInterface(int inSelector, void* inFileHandle, void* inHostObject)
{
    tarvo::TarvoATInterface interface;
    return interface.EntryPoint(inSelector, inFileHandle, inHostObject);
}
