/* A plugin for QEMU's user mode that counts executed guest instructions and lets the guest read the count.
 *
 * qemu-arm -plugin libcountInstructions.so,count=PATH program: whenever the program makes a system call whose first three
 * arguments are the marker words below, the count so far is written to PATH as eight bytes. The counting is exact and
 * repeatable: every translated block adds its number of instructions when it starts.
 *
 * Debian does not package the plugin header; these few declarations are the documented interface, version 1. */
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#define EXPORT __attribute__((visibility("default")))

typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
struct qemu_info;
enum { INLINE_ADD_U64 = 0 };

void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id, void (*translated)(qemu_plugin_id_t, struct qemu_plugin_tb*));
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* block, int operation, void* counter, uint64_t addend);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* block);
void qemu_plugin_register_vcpu_syscall_cb(
    qemu_plugin_id_t id, void (*called)(qemu_plugin_id_t, unsigned, int64_t, uint64_t, uint64_t, uint64_t, uint64_t, uint64_t,
                                        uint64_t, uint64_t, uint64_t));

EXPORT int qemu_plugin_version = 1;
EXPORT int qemu_plugin_install(qemu_plugin_id_t id, const struct qemu_info* info, int argc, char** argv);

/* The guest's side of these words is in bench/instructionCount.cpp. */
static const uint32_t markers[3] = {0x7256414b, 0x636f756e, 0x74496e73};

static uint64_t instructions;
static int countFile = -1;

static void onTranslation(qemu_plugin_id_t id, struct qemu_plugin_tb* block)
{
    (void)id;
    qemu_plugin_register_vcpu_tb_exec_inline(block, INLINE_ADD_U64, &instructions, qemu_plugin_tb_n_insns(block));
}

static void onSystemCall(qemu_plugin_id_t id, unsigned vcpu, int64_t number, uint64_t a1, uint64_t a2, uint64_t a3,
                         uint64_t a4, uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8)
{
    (void)id, (void)vcpu, (void)number, (void)a4, (void)a5, (void)a6, (void)a7, (void)a8;
    if ((uint32_t)a1 != markers[0] || (uint32_t)a2 != markers[1] || (uint32_t)a3 != markers[2])
        return;
    if (pwrite(countFile, &instructions, sizeof instructions, 0) != (ssize_t)sizeof instructions)
        perror("countInstructions: cannot write the count");
}

int qemu_plugin_install(qemu_plugin_id_t id, const struct qemu_info* info, int argc, char** argv)
{
    (void)info;
    for (int i = 0; i < argc; i++)
        if (strncmp(argv[i], "count=", 6) == 0)
            countFile = open(argv[i] + 6, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (countFile < 0) {
        fprintf(stderr, "countInstructions: give a file that can be written, count=PATH\n");
        return -1;
    }
    qemu_plugin_register_vcpu_tb_trans_cb(id, onTranslation);
    qemu_plugin_register_vcpu_syscall_cb(id, onSystemCall);
    return 0;
}
