#include <dwel/bfactory.h>

BModuleFactory *bfactory()
{
    // Intentionally never destroyed: modules may register from their own static initialisers and
    // the table must outlive every library that is unloaded at exit.
    static BModuleFactory *factory = new BModuleFactory;
    return factory;
}
