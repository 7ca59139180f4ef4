// FreeType with what caption fonts need of it alone: the linker then leaves out the modules for all other kinds.
#include <cstdlib>
#include <ft2build.h>
#include <initializer_list>
#include FT_FREETYPE_H
#include FT_MODULE_H

extern "C" {

extern const FT_Module_Class tt_driver_class;
extern const FT_Module_Class sfnt_module_class;
extern const FT_Module_Class ft_smooth_renderer_class;
extern const FT_Module_Class ft_raster1_renderer_class;

static void *Get_Memory(FT_Memory /*pstMemory*/, long iBytes)
{
    return std::malloc(static_cast<size_t>(iBytes));
}

static void Free_Memory(FT_Memory /*pstMemory*/, void *pvBlock)
{
    std::free(pvBlock);
}

static void *Resize_Memory(FT_Memory /*pstMemory*/, long /*iOldBytes*/, long iBytes, void *pvBlock)
{
    return std::realloc(pvBlock, static_cast<size_t>(iBytes));
}

static FT_MemoryRec_ s_stMemory = {nullptr, Get_Memory, Free_Memory, Resize_Memory};

// In place of FreeType's own, which names every module.
FT_Error FT_Init_FreeType(FT_Library *phLibrary)
{
    const FT_Error iError = FT_New_Library(&s_stMemory, phLibrary);
    if (iError != 0) return iError;
    for (const FT_Module_Class *pstModule :
         {&tt_driver_class, &sfnt_module_class, &ft_smooth_renderer_class, &ft_raster1_renderer_class})
        FT_Add_Module(*phLibrary, pstModule);
    return 0;
}

FT_Error FT_Done_FreeType(FT_Library hLibrary)
{
    return FT_Done_Library(hLibrary);
}

} // extern "C"
