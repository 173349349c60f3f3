# A disk that can be filled.

# full_disk <script>: runs it with bash at the root of a file system of its own with 64 kB; `fill` in it leaves no
# byte free.
full_disk() {
    command -v unshare >/dev/null && unshare -rm true 2>/dev/null || skip "no private file systems here"
    mkdir -p "$BATS_TEST_TMPDIR/disk"
    unshare -rm bash -c "mount -t tmpfs -o size=64k none '$BATS_TEST_TMPDIR/disk' && cd '$BATS_TEST_TMPDIR/disk' || exit 99
fill() { cat /dev/zero >filling 2>/dev/null; true; }
$1"
}
