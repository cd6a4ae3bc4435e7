/* A structured exception handler, which the compiler has no language for.
 *
 * int velm_invoke_guarded(void (*body)(void*), void* argument,
 *                         long (*filter)(EXCEPTION_POINTERS*, void*), void* filterContext)
 *
 * Calls body(argument): 0 when it returned. For an exception in it, filter(exception, filterContext) gives
 * the verdict of the system's table-driven handlers; where that is 1 the frames between are dropped and the
 * result is 1.
 */
	.text
	.p2align 4
	.globl	velm_invoke_guarded
	.def	velm_invoke_guarded; .scl 2; .type 32; .endef
	.seh_proc velm_invoke_guarded
velm_invoke_guarded:
	pushq	%rbp
	.seh_pushreg %rbp
	subq	$48, %rsp
	.seh_stackalloc 48
	.seh_endprologue
	movq	%r8, 32(%rsp)		/* filter, for the thunk below */
	movq	%r9, 40(%rsp)		/* filterContext */
	movq	%rcx, %rax
	movq	%rdx, %rcx
.Lguarded_begin:
	call	*%rax
	nop				/* the return address lies within the guarded range */
.Lguarded_end:
	xorl	%eax, %eax
.Lreturn:
	addq	$48, %rsp
	popq	%rbp
	ret
.Lexecute_handler:
	movl	$1, %eax
	jmp	.Lreturn
	.seh_handler __C_specific_handler, @except
	.seh_handlerdata
	.long	1
	.rva	.Lguarded_begin
	.rva	.Lguarded_end
	.rva	filter_thunk
	.rva	.Lexecute_handler
	.text
	.seh_endproc

/* long filter_thunk(EXCEPTION_POINTERS* exception, void* frame): frame is the stack pointer of the function
 * above, where it keeps the filter. */
	.p2align 4
	.def	filter_thunk; .scl 3; .type 32; .endef
	.seh_proc filter_thunk
filter_thunk:
	subq	$40, %rsp
	.seh_stackalloc 40
	.seh_endprologue
	movq	32(%rdx), %rax
	movq	40(%rdx), %rdx
	call	*%rax
	addq	$40, %rsp
	ret
	.seh_endproc
