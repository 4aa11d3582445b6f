#include "picture/FileReplace.h"

void CancelReplacing(ReplacingFile* file)
{
    if (file->stream)
        std::fclose(file->stream);
    file->stream = nullptr;
    std::error_code ignored;
    if (!file->sibling.empty())
        std::filesystem::remove(file->sibling, ignored);
    file->sibling.clear();
}
