// An image file, decoded.
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <wrl/client.h>

#include <string>

namespace html {

class Picture {
public:
    // False where the bytes are no image that OLE can read.
    bool Decode(const std::string& bytes);
    bool IsDecoded() const { return m_picture != nullptr; }
    // Image pixels; 0 by 0 before it is decoded.
    SIZE Size() const { return m_size; }
    // Stretches the image over the rectangle.
    void Draw(HDC dc, const RECT& target) const;

private:
    Microsoft::WRL::ComPtr<IPicture> m_picture; // owns the bitmap
    HBITMAP m_bitmap = nullptr;
    SIZE m_size = {};
};

} // namespace html
