# How a message finds its method: every argument register is kept, the runtime names the method, and the method is
# jumped to. For x86-64 and ELF, where Objective-C has no such function of its own.
.text

# Keeps what may hold arguments: six integer registers, eight vector registers, and the count of those in rax.
.macro KEEP_ARGUMENTS
  pushq %rbp
  movq %rsp, %rbp
  subq $192, %rsp
  movq %rdi, 0(%rsp)
  movq %rsi, 8(%rsp)
  movq %rdx, 16(%rsp)
  movq %rcx, 24(%rsp)
  movq %r8, 32(%rsp)
  movq %r9, 40(%rsp)
  movq %rax, 48(%rsp)
  movups %xmm0, 64(%rsp)
  movups %xmm1, 80(%rsp)
  movups %xmm2, 96(%rsp)
  movups %xmm3, 112(%rsp)
  movups %xmm4, 128(%rsp)
  movups %xmm5, 144(%rsp)
  movups %xmm6, 160(%rsp)
  movups %xmm7, 176(%rsp)
.endm

.macro GO_TO_METHOD
  movq %rax, %r11
  movq 0(%rsp), %rdi
  movq 8(%rsp), %rsi
  movq 16(%rsp), %rdx
  movq 24(%rsp), %rcx
  movq 32(%rsp), %r8
  movq 40(%rsp), %r9
  movq 48(%rsp), %rax
  movups 64(%rsp), %xmm0
  movups 80(%rsp), %xmm1
  movups 96(%rsp), %xmm2
  movups 112(%rsp), %xmm3
  movups 128(%rsp), %xmm4
  movups 144(%rsp), %xmm5
  movups 160(%rsp), %xmm6
  movups 176(%rsp), %xmm7
  leave
  jmp *%r11
.endm

.globl objc_msgSend
.type objc_msgSend, @function
objc_msgSend:
  testq %rdi, %rdi
  je nothing_answers
  KEEP_ARGUMENTS
  call methodForMessage@PLT
  GO_TO_METHOD
.size objc_msgSend, . - objc_msgSend

# A message to nil is answered with zero, whatever type is asked for.
nothing_answers:
  xorl %eax, %eax
  xorl %edx, %edx
  xorps %xmm0, %xmm0
  xorps %xmm1, %xmm1
  ret

# For results that are too large for registers; rdi then holds where they go.
.globl objc_msgSend_stret
.type objc_msgSend_stret, @function
objc_msgSend_stret:
  testq %rsi, %rsi
  je nothing_answers_at_length
  KEEP_ARGUMENTS
  movq %rsi, %rdi
  movq %rdx, %rsi
  call methodForMessage@PLT
  GO_TO_METHOD
.size objc_msgSend_stret, . - objc_msgSend_stret

# The caller has cleared the place of the result.
nothing_answers_at_length:
  movq %rdi, %rax
  ret

.globl objc_msgSendSuper2
.type objc_msgSendSuper2, @function
objc_msgSendSuper2:
  KEEP_ARGUMENTS
  call methodForSuperMessage@PLT
  movq 0(%rsp), %rdi
  movq (%rdi), %rdi
  movq %rdi, 0(%rsp)
  GO_TO_METHOD
.size objc_msgSendSuper2, . - objc_msgSendSuper2

.section .note.GNU-stack, "", @progbits
