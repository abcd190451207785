// Decodes JPEG and the other formats that OLE pictures know.
#include "wine/htmldocument/engine/Picture.h"

#include <olectl.h>

namespace html {

using Microsoft::WRL::ComPtr;

bool Picture::Decode(const std::string& bytes) {
    ComPtr<IStream> stream;
    if (bytes.empty() || FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf()))) {
        return false;
    }
    const LARGE_INTEGER start = {};
    ULONG written = 0;
    ComPtr<IPicture> picture;
    OLE_HANDLE handle = 0;
    short type = PICTYPE_UNINITIALIZED;
    BITMAP bitmap = {};
    if (FAILED(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written)) ||
        FAILED(stream->Seek(start, STREAM_SEEK_SET, nullptr)) ||
        FAILED(OleLoadPicture(stream.Get(), 0, FALSE, IID_IPicture,
                              reinterpret_cast<void**>(picture.GetAddressOf()))) ||
        FAILED(picture->get_Type(&type)) || type != PICTYPE_BITMAP ||
        FAILED(picture->get_Handle(&handle))) {
        return false;
    }
    // Handles of GDI objects fit in 32 bits.
    const auto object = reinterpret_cast<HBITMAP>(static_cast<ULONG_PTR>(handle));
    if (GetObjectW(object, sizeof(bitmap), &bitmap) == 0) {
        return false;
    }
    m_picture = picture;
    m_bitmap = object;
    m_size = {bitmap.bmWidth, bitmap.bmHeight};
    return true;
}

void Picture::Draw(HDC dc, const RECT& target) const {
    const HDC source = CreateCompatibleDC(dc);
    const HGDIOBJ previous = SelectObject(source, m_bitmap);
    const int width = target.right - target.left;
    const int height = target.bottom - target.top;
    if (width == m_size.cx && height == m_size.cy) {
        BitBlt(dc, target.left, target.top, width, height, source, 0, 0, SRCCOPY);
    } else {
        SetStretchBltMode(dc, HALFTONE);
        SetBrushOrgEx(dc, 0, 0, nullptr);
        StretchBlt(dc, target.left, target.top, width, height, source, 0, 0, m_size.cx, m_size.cy,
                   SRCCOPY);
    }
    SelectObject(source, previous);
    DeleteDC(source);
}

} // namespace html
