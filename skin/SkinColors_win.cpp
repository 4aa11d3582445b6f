#include "skin/SkinColors.h"

#include "app/Win.h"

int SkinScheme()
{
    return 0;
}

unsigned long SkinColor(int systemIndex)
{
    return GetSysColor(systemIndex);
}
