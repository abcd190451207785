// The one object through which the library's programs use the registry. It is pointed at a key by a
// textual path, holds the key open, and reads, writes, walks, copies and deletes what is in it.
//
// Failure contract: operations that return bool give false on every failure, and that is all: no
// error code is kept, nothing is thrown, nothing is shown. Outputs of a failed read are unchanged
// unless an operation says otherwise; a count is 0. Only the exhaustion of memory in a table or a
// string ends the process (see base/CTable1D.h).
//
// Paths: "ROOT" or "ROOT\rest", split at the first backslash. ROOT is a real root such as
// HKEY_LOCAL_MACHINE or one of the symbolic roots of registry/SymbolicRoots.h, in any case.
// Trailing backslashes are dropped when the key is opened.
//
// Registry data is not trusted: strings may be unterminated, odd-sized or empty. Nothing beyond the
// bytes that came back is read.
//
// Defined in: KeyLifetime.cpp (construction, closing, flushing), PathResolution.cpp (opening by
// path), RelativeMoves.cpp, ValueReads.cpp, Enumeration.cpp (counts and lists), Writes.cpp,
// TreeOperations.cpp (creating and deleting keys), CopyTree.cpp, VolatileStamps.cpp, and
// VolatileMutexes.cpp.
//
// The layer is for one thread of a process at a time: the layout, the write switch and the stamping
// of volatile keys go by plain flags of the process. A key object closes what it holds, and
// releases a mutex that it holds, when it is destroyed.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "base/CKORString.h"
#include "base/CTable1D.h"
#include "registry/RegValueType.h"
#include "registry/SymbolicRoots.h"

namespace kor {

// What GetFullName gives for a key that was opened by the path in the layout, whether or not there
// is such a key; empty for an unknown root.
CKORString ResolvedName(const CKORString& path, bool rtxLayout);

} // namespace kor

class CRegistryKey {
public:
    CRegistryKey();
    // Whether the key was opened is learned with IsOpen.
    explicit CRegistryKey(const CKORString& path, bool create = false);
    CRegistryKey(const CRegistryKey&) = delete;
    CRegistryKey& operator=(const CRegistryKey&) = delete;
    // Flushes the key when it was opened with create, also when it existed, and when something in
    // it was changed since it was opened.
    virtual ~CRegistryKey();

    // The layout in which key objects that are constructed from now on resolve symbolic roots.
    static void SetRtxMode(bool rtxMode);
    static bool RtxMode();

    // Values are written only below the current user, and in the real-time layout only below the
    // local machine. The switch, off at start, lifts that rule for the process. Deleting values and
    // creating, deleting and copying keys do not follow it.
    static bool AllowWritesAnywhere();
    static void SetAllowWritesAnywhere();
    static void ClearAllowWritesAnywhere();

    // --- Opening. The key is opened for reading, a created one too: each write reopens it. ---
    // A failed opening leaves the object closed and reset. Whatever it had open is closed first, as
    // by Close.

    // A path that names "volatile" outside the volatile locations is refused when a key would be
    // created, and below a symbolic root always.
    [[nodiscard]] bool Open(const CKORString& path, bool create);
    [[nodiscard]] bool OpenSymbolic(SymbolicRootId id, const CKORString& subPath, bool create);
    [[nodiscard]] bool OpenLocalMachineRuntime(const CKORString& subPath, bool create);
    [[nodiscard]] bool OpenCurrentUserRuntime(const CKORString& subPath, bool create);

    // Opens the key to which the object was resolved. With keepOnFailure, a failure does not reset
    // the object, and a handle that is held, which the caller has closed (see Close), is replaced;
    // without it, false is returned and nothing changes when a handle is held. A created key is
    // open for reading, write or not.
    [[nodiscard]] bool OpenResolved(bool create, bool write, bool keepOnFailure);

    // Closes the key and opens it again. When write access is refused, the key is opened for
    // reading instead and the result is false; when that is refused too, the object is reset. A
    // refused opening for reading alone leaves the object closed, on its key; a refused close
    // changes nothing.
    [[nodiscard]] bool ReopenForWrite(bool write);

    // Moves to another key under the same root and opens it for reading. A leading backslash starts
    // at the root; leading ".." components go up. Anything else is appended as it stands. After a
    // failure the object stays where it was, closed; it can be moved on from there.
    [[nodiscard]] bool OpenRelative(const CKORString& path);

    // Does not flush, and drops a flush that was due; call FlushCreated first to keep it. With
    // handleOnly, drops nothing and keeps the closed handle: reopen or reset the object before any
    // other use.
    bool Close(bool handleOnly = false);
    // False when nothing was open.
    bool CloseIfOpen();
    // Forgets the key without closing anything.
    void Reset();
    bool IsOpen() const { return m_handle != nullptr; }
    bool Flush();
    // Flushes, and forgets that the key was created or changed.
    bool FlushCreated();

    // The real root's name and the subkey; empty when the object is reset.
    CKORString GetFullName() const;

    // --- Values. A read fails when the value has another type or size than the operation says. ---

    bool ValueExists(const CKORString& name) const;
    // Reads the value into the object's own buffer.
    bool QueryValue(const CKORString& name, RegValueType requestedType);
    bool ReadDword(const CKORString& name, std::uint32_t& value);
    bool ReadDword(const CKORString& name, DWORD& value);
    bool ReadDwordAsInt64(const CKORString& name, std::int64_t& value);
    bool ReadDwordAsUInt64(const CKORString& name, std::uint64_t& value);
    bool ReadQword(const CKORString& name, std::uint64_t& value);
    bool ReadQword(const CKORString& name, std::int64_t& value);
    // Strings end at their first null. Expandable strings are not expanded. The items "a" and "b"
    // of a multi-string are read as "<a> <b>".
    bool ReadString(const CKORString& name, CKORString& value);
    // size is the buffer's in bytes, and afterwards that of the value last read, also when the
    // buffer was too small. Without an open key it is not touched.
    bool ReadBinary(const CKORString& name, void* buffer, std::uint64_t& size);

    // type is Unknown after a value of a type that the layer does not know, which is a failure.
    static bool GetValueType(HKEY handle, const CKORString& name, RegValueType& type);
    // Of a value in this key.
    bool GetValueType(const CKORString& name, RegValueType& type) const;
    // One read into the caller's buffer. Sets size, in bytes, and hasMoreData after a failed read,
    // too. Writes a trace line to standard output when type is Binary on entry.
    static bool QueryValueTraced(HKEY handle, const CKORString& name, RegValueType& type,
                                 void* buffer, std::uint64_t& size, bool& hasMoreData);

    // --- Lists, in the registry's own order. The list is emptied first. ---

    std::uint32_t GetSubKeyCount() const;
    std::uint32_t GetValueCount() const;
    // False keeps the names that were found before the failure.
    bool EnumSubKeyNames(CTable1D<CKORString>& names) const;
    bool EnumValueNames(CTable1D<CKORString>& names) const;
    // The same walks without a list, for keys with more names than are to be kept. The visitor
    // gives false to end the walk, which is a success; it must not move or close the object.
    using NameVisitor = std::function<bool(const wchar_t* name)>;
    bool VisitSubKeyNames(const NameVisitor& visit) const;
    bool VisitValueNames(const NameVisitor& visit) const;
    bool SubKeyExists(const CKORString& name) const;

    // --- Changes. The object is left open for reading on the key where it was, also on failure,
    // unless the system refuses to open that key again: then it is closed (see ReopenForWrite). ---

    // Whether the rule of AllowWritesAnywhere lets values be written to this key.
    bool IsWritableRoot() const;

    // Keep the low 32 bits of the value.
    bool WriteDword(const CKORString& name, std::uint32_t value);
    bool WriteDword(const CKORString& name, std::int32_t value);
    bool WriteDword(const CKORString& name, std::uint64_t value);
    bool WriteDword(const CKORString& name, std::int64_t value);
    // The system's own types, which are none of those above.
    bool WriteDword(const CKORString& name, DWORD value);
    bool WriteDword(const CKORString& name, LONG value);
    bool WriteQword(const CKORString& name, std::uint64_t value);
    bool WriteQword(const CKORString& name, std::int64_t value);
    bool WriteString(const CKORString& name, const CKORString& value);
    bool WriteExpandString(const CKORString& name, const CKORString& value);
    // size is in bytes.
    bool WriteBinary(const CKORString& name, const void* data, std::uint64_t size);
    // Writes the data as it stands; size is in bytes. Strings must end with their null, behind
    // which the system may look otherwise. Multi-strings and unknown types are refused.
    bool WriteValue(const CKORString& name, RegValueType type, const void* data,
                    std::uint64_t size);
    [[nodiscard]] bool DeleteValue(const CKORString& name);

    // The new key is volatile when this one was opened in a volatile location.
    bool CreateSubKey(const CKORString& name);
    // The subkey with everything in it. Of a path with several components the last one is deleted,
    // in the key that this one's name and the components before, as they stand, lead to.
    [[nodiscard]] bool DeleteSubKey(const CKORString& path);
    // Empties the subkey, which stays. What was deleted before a failure stays deleted.
    // Both move as OpenRelative does, DeleteTree along the whole path, DeleteSubKey along the last
    // component: a leading backslash or ".." leads to keys outside this one, which are emptied
    // then. Check paths that come from elsewhere. A key with a value whose name is longer than
    // 1,023 characters cannot be emptied.
    [[nodiscard]] bool DeleteTree(const CKORString& path);

    // destination is a path as Open takes it; the key is created when it does not exist. Copies
    // what can be copied: true when the values could be listed, even if none was written.
    // Expandable strings are written as plain ones, multi-strings and unknown types not at all. Of
    // a 64-bit number nothing is kept: a 32-bit 0 is written, or the last value of a REG_QWORD of
    // 4 bytes that came before it.
    bool CopyValues(const CKORString& destination);
    // With everything below the key, except keys whose full name begins with exclusion, compared
    // with case: pass the destination's full name when it lies inside the source. An empty
    // exclusion is the beginning of every name. Branches that cannot be made in the copy are left
    // out, such as those whose name contains "volatile" (see Open). True when the values of the key
    // itself could be listed, and when the key itself is excluded.
    bool CopyTree(const CKORString& destination, const CKORString& exclusion);

    // Empties the current user's volatile data; true when there is no runtime key to look in. For a
    // fresh object, which is closed afterwards.
    [[nodiscard]] bool ClearCurrentUserVolatile();

    // --- Volatile data: whatever lies in the key "volatile" directly below a symbolic root. ---

    // Takes the mutex of the volatile location in which the object was last opened, wherever it was
    // moved since, and waits for it without limit. Those of the roots 1 to 4 and 7 have one; in
    // every other place the result is false, and so it is without an open key and when this object
    // holds its mutex already. False also when a holder before ended without unlocking: the mutex
    // is held then all the same and must be unlocked.
    [[nodiscard]] bool LockVolatile();
    // On the thread that locked, while the object has a key open; whatever key that is. An object
    // that is destroyed before releases the mutex.
    [[nodiscard]] bool UnlockVolatile();

private:
    // Whether an opening that creates or reaches a volatile location may go on.
    enum class StampResult { Refused = -1, Ready = 1 };

    // Opens m_subKey below m_root; null on failure.
    HKEY OpenAtSystem(bool create, bool write);
    void TakePerUserRoot();
    void GiveUpPerUserRoot();
    // Moves to the subkey as OpenRelative does.
    [[nodiscard]] bool MoveTo(const CKORString& subKey);
    void LeaveClosed();
    [[nodiscard]] bool PrepareVolatile(const CKORString& subPath, const wchar_t* rootName,
                                       SymbolicRootId id, bool create);
    [[nodiscard]] bool AllocateReadBuffer(DWORD capacity);
    LSTATUS QueryIntoBuffer(const CKORString& name, DWORD& registryType, DWORD& size);
    // Reads a value that has the type and just the size, in bytes.
    bool ReadExactly(const CKORString& name, RegValueType type, void* value, std::size_t size);
    std::wstring_view BufferedCharacters() const;

    // The walks' moves: a subkey may bear a name that OpenRelative would follow upwards.
    [[nodiscard]] bool EnterSubKey(const CKORString& name);
    [[nodiscard]] bool LeaveSubKey();
    // Goes back to a key that the object was on. False when that took a second try, or failed.
    [[nodiscard]] bool ReturnTo(const CKORString& start);
    [[nodiscard]] bool EmptyOpenKey();
    [[nodiscard]] bool DeleteAllValues();
    [[nodiscard]] bool DeleteEmptySubKey(const CKORString& name);
    bool IsExcluded(const CKORString& exclusion) const;
    void TakeViewOf(const CRegistryKey& other);
    void CopyValueTo(CRegistryKey& target, const CKORString& name, std::int64_t& number);
    // Makes sure that the root has a stamped key "volatile".
    StampResult StampVolatileRoot(const CKORString& creatorPath, SymbolicRootId id, bool create);
    void StampValueCreator(const CKORString& valueName);
    bool ReleaseVolatileMutex();

    bool m_rtxLayout;
    HKEY m_root = nullptr;
    HKEY m_handle = nullptr;
    bool m_isFlushDue = false; // it was opened with create or changed: the destructor flushes
    CKORString m_subKey;
    bool m_ownsRoot = false; // m_root was opened for the current user

protected:
    // Added to the access that each key is opened with: KEY_WOW64_32KEY, KEY_WOW64_64KEY or
    // nothing.
    REGSAM m_extraAccess = 0;

private:
    bool m_constructedWithPath = false;
    bool m_isConstructing = false;                // protects m_constructedWithPath from resets
    std::unique_ptr<CRegistryKey> StampCompanion; // holds the stamped key while a stamp is due
    std::uint32_t PendingStampClass = 0;          // the class whose "ValueCreator" stamp is due
    std::int32_t VolatileClass = 0;               // not 0: keys are created volatile
    std::unique_ptr<std::byte[]> m_readBuffer;
    std::uint64_t m_readBufferCapacity = 0;
    std::uint64_t m_lastDataSize = 0;
    HANDLE VolatileMutex = nullptr;
};
