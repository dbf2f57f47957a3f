/* The control functions of the stand-in libftd2xx.so, for the program that
 * loaded it (find them with dlsym). Without them the stand-in lists the usb
 * controllers of the scenario file named by KAVRO_SIM_USB_SCENARIO, read on
 * first use; with neither it lists no device.
 *
 *   void* d2xx = dlopen(".../sim/usb/libftd2xx.so", RTLD_NOW | RTLD_GLOBAL);
 *   auto load = (KavroSimUsbLoadText)dlsym(d2xx, "kavro_sim_usb_load_text");
 *   load("controller usb\n"
 *        "module probe GP02000001 range=2\n");
 *
 * Loaded with RTLD_GLOBAL before the library's first USB use, the stand-in is
 * also what the library's own dlopen("libftd2xx.so") finds, by its SONAME. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* Replace every device with those of the scenario's usb controllers (other
 * controllers are ignored); open handles become invalid. Return the number
 * of FTDI devices listed, or -1 when the scenario is wrong
 * (kavro_sim_usb_error() says why; the devices are then left as they were). */
int kavro_sim_usb_load_text(const char* scenario);
int kavro_sim_usb_load_file(const char* path);
/* No devices at all. */
void kavro_sim_usb_clear(void);
/* Why the last load failed; valid until the next load. */
const char* kavro_sim_usb_error(void);

/* The simulator core's kavrosim::SimController behind the n-th usb
 * controller line (from 0), for programs built from the same sources
 * (tests): faults, module changes, the request log. Null past the end; valid
 * until the next load or clear. */
void* kavro_sim_usb_controller(int index);

/* Caps how long FT_Read waits for bytes that will never come (a dropped or
 * cut answer), whatever time-out the host set; 0 removes the cap. */
void kavro_sim_usb_limit_read_wait(unsigned milliseconds);

typedef int (*KavroSimUsbLoadText)(const char*);
typedef int (*KavroSimUsbLoadFile)(const char*);
typedef void (*KavroSimUsbClear)(void);
typedef const char* (*KavroSimUsbError)(void);
typedef void* (*KavroSimUsbController)(int);
typedef void (*KavroSimUsbLimitReadWait)(unsigned);

#ifdef __cplusplus
}
#endif
