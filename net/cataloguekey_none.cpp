#include "net/cataloguekey.h"

cataloguekey::Judge cataloguekey::judge()
{
    return nullptr;
}
