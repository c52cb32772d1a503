/* An instrument on the network by somebody else's RPC and XDR: it answers what was written to it, a
 * few bytes at a time. It is the whole host's, portmapper included. Usage: instrument_server
 * ADDRESS */

#include "instrument.h"

#include <arpa/inet.h>
#include <stdio.h>
#include <string.h>

enum
{
    end_flag = 8,
    end_reason = 4,
    port = 111
};

void mapper_2(struct svc_req *request, SVCXPRT *transport);
void core_1(struct svc_req *request, SVCXPRT *transport);

static char text[4096];
static unsigned int length, at, triggers;
static bool_t locked;

unsigned int *get_port_2_svc(Mapping *mapping, struct svc_req *request)
{
    static unsigned int found;
    found = mapping->prog == CORE && mapping->prot == IPPROTO_TCP ? port : 0;
    return &found;
}

CreateResp *create_1_svc(CreateParms *parms, struct svc_req *request)
{
    static CreateResp resp = {0, 0, 0, 100};
    resp.error = strcmp(parms->device, "inst0") == 0 && parms->lock_timeout == 0 ? 0 : 3;
    return &resp;
}

WriteResp *write_1_svc(WriteParms *parms, struct svc_req *request)
{
    static WriteResp resp;
    resp.size = parms->data.data_len;
    resp.error =
        parms->io_timeout == 0 || resp.size > 100 || length + resp.size > sizeof text ? 5 : 0;
    if (resp.error == 0) {
        memcpy(text + length, parms->data.data_val, resp.size);
        length += resp.size;
        if (parms->flags & end_flag)
            text[length++] = '\n';
    }
    return &resp;
}

ReadResp *read_1_svc(ReadParms *parms, struct svc_req *request)
{
    static ReadResp resp;
    unsigned int size = length - at < 70 ? length - at : 70;
    size = size < parms->size ? size : parms->size;
    resp.data.data_val = text + at;
    resp.data.data_len = size;
    at += size;
    resp.error = length == 0 ? 15 : 0;
    resp.reason = at == length ? end_reason : 0;
    if (at == length)
        at = length = 0;
    return &resp;
}

StatusResp *status_1_svc(GenericParms *parms, struct svc_req *request)
{
    static StatusResp resp;
    resp.status = (unsigned char)(triggers | (locked ? 0x80 : 0));
    return &resp;
}

static int *done(void)
{
    static int error;
    return &error;
}

int *trigger_1_svc(GenericParms *parms, struct svc_req *request)
{
    ++triggers;
    return done();
}

int *clear_1_svc(GenericParms *parms, struct svc_req *request)
{
    at = length = 0;
    return done();
}

int *lock_1_svc(LockParms *parms, struct svc_req *request)
{
    locked = TRUE;
    return done();
}

int *unlock_1_svc(int *link, struct svc_req *request)
{
    locked = FALSE;
    return done();
}

int *destroy_1_svc(int *link, struct svc_req *request)
{
    triggers = 0;
    return done();
}

int main(int argc, char *argv[])
{
    struct sockaddr_in address = {.sin_family = AF_INET, .sin_port = htons(port)};
    int listener = socket(AF_INET, SOCK_STREAM, 0);
    if (argc != 2 || inet_pton(AF_INET, argv[1], &address.sin_addr) != 1 ||
        bind(listener, (struct sockaddr *)&address, sizeof address) != 0 ||
        listen(listener, 5) != 0) {
        perror(argv[0]);
        return 1;
    }
    SVCXPRT *transport = svc_vc_create(listener, 0, 0);
    if (!svc_register(transport, MAPPER, MAPPER_2, mapper_2, 0) ||
        !svc_register(transport, CORE, CORE_1, core_1, 0))
        return 1;
    puts("Listening");
    fflush(stdout);
    svc_run();
    return 1;
}
